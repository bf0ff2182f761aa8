#pragma once

#include <optional>
#include <string>

#include "server/store/Database.h"

namespace kel::server {

/// Changes of drafts by an account, from pages and from programs alike. The store adds each change to
/// the audit; each publication is a line of the log.
class Drafts {
public:
    /// What became of a publication.
    struct Publication {
        std::optional<int> version;  // none: nothing was published
        std::string reason;  // why the draft is not valid; empty, without a version: it has another revision
    };

    Drafts(Database& database, std::string account) : database(database), account(std::move(account)) {}

    /// Writes a draft over the one of that revision (0: there is none yet), valid or not. The revision that
    /// has the text; nothing, and nothing is written, when the draft has another revision.
    std::optional<int> Save(const std::string& referrer, const std::string& text, int revision);
    /// Publishes the draft of that revision, if it is valid.
    Publication Publish(const std::string& referrer, int revision);
    /// Deletes the draft of that revision; false when it has another one.
    bool Drop(const std::string& referrer, int revision);

private:
    Database& database;
    std::string account;
};

}  // namespace kel::server
