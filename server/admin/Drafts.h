#pragma once

#include <optional>
#include <string>

#include "server/store/Database.h"

namespace kel::server {

/// Changes to drafts by an account, from pages and from programs alike. The store adds each change to the
/// audit; each publication is logged.
class Drafts {
public:
    /// The result of a publication.
    struct Publication {
        std::optional<int> version;  // none: nothing was published
        std::string reason;  // why the draft is not valid; empty, without a version: it has another revision
    };

    Drafts(Database& database, std::string account) : database(database), account(std::move(account)) {}

    /// Replaces the draft of that revision (0: there is none yet) by a text, valid or not. Returns the new
    /// revision; returns nothing, and writes nothing, when the draft has another revision.
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
