#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "server/store/Database.h"

namespace kel::server {

/// A published version of a product's requirements. It never changes.
struct PublishedSet {
    std::int64_t id = 0;
    int version = 0;
    std::int64_t published = 0;
    std::string author;
};

/// The versions that all products published on one day.
struct PublishedDay {
    std::int64_t day = 0;  // since 1970, UTC
    int count = 0;
    std::string referrer;  // and `version`: of the only one, if count is 1
    int version = 0;
};

/// Requirements that are being written; `revision` grows with each change.
struct Draft {
    std::string text;
    int revision = 0;
    std::int64_t changed = 0;
    std::string author;
};

/// An entry in the list of products.
struct Product {
    std::string referrer;
    int version = 0;  // the newest; 0 when nothing is published
    std::int64_t published = 0;
    bool hasDraft = false;
    std::string title;  // of the newest version
};

/// Published requirements and their drafts. Every change and its audit entry are one transaction.
class RequirementSets {
public:
    explicit RequirementSets(Database& database) : database(database) {}

    /// All referrers with published requirements or a draft, by name.
    std::vector<Product> Products();
    /// The titles of the newest versions by referrer; those without one are left out.
    std::map<std::string, std::string> Titles(const std::vector<std::string>& referrers);
    /// The versions of a referrer's requirements, the newest first.
    std::vector<PublishedSet> Versions(const std::string& referrer);
    /// The days on which versions were published, in their order.
    std::vector<PublishedDay> PublishedDays();
    /// The newest requirements of a referrer; nothing for an unknown one.
    std::optional<PublishedSet> Newest(const std::string& referrer);
    /// The same for a caller that may wait: it leaves alone the connections that are reserved for group
    /// lists.
    std::optional<PublishedSet> NewestForPage(const std::string& referrer);
    /// The text of published requirements; empty for an unknown id.
    std::string Text(std::int64_t set);
    /// Publishes requirements as a referrer's newest version, unless they are the newest already. Returns the
    /// version. The audit names the account.
    int Publish(const std::string& referrer, const std::string& text, const std::string& author,
                const std::string& account);

    std::optional<Draft> FindDraft(const std::string& referrer);
    /// Replaces the draft of that revision (0: there is none yet). Returns the new revision; returns nothing,
    /// and writes nothing, when the draft has another revision. An empty text is the same as no draft.
    std::optional<int> SaveDraft(const std::string& referrer, const std::string& text, int revision,
                                 const std::string& author);
    /// Publishes the draft of that revision, drops it, and returns the version. Nothing when it has another
    /// revision.
    std::optional<int> PublishDraft(const std::string& referrer, int revision, const std::string& author);
    /// False when the draft has another revision.
    bool DropDraft(const std::string& referrer, int revision, const std::string& account);

private:
    Database& database;
};

}  // namespace kel::server
