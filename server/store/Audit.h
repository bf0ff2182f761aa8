#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "server/store/Database.h"

namespace kel::server {

/// Which account did what, and when.
struct AuditEntry {
    std::int64_t id = 0;
    std::int64_t time = 0;
    std::string account, action, subject;
};

/// Which entries to list; a member that is empty or 0 does not restrict them.
struct AuditFilter {
    std::string account = {};
    std::string text = {};             // that the action or the subject contains
    std::int64_t from = 0, until = 0;  // from this time on, and before that
    std::int64_t beforeId = 0;         // the page after the entry with that id
    int count = 100;
};

/// The record of changes and log-ins, kept for a year.
class Audit {
public:
    explicit Audit(Database& database) : database(database) {}

    void Add(const std::string& account, const std::string& action, const std::string& subject);
    /// The entries of the filter, the newest first.
    std::vector<AuditEntry> Entries(const AuditFilter& filter);

    /// Adds an entry as a part of a transaction, and returns its id. Deletes some entries older than a year.
    static std::int64_t AddEntry(SqlConnection& connection, const std::string& account,
                                 const std::string& action, const std::string& subject);

private:
    Database& database;
};

}  // namespace kel::server
