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

/// The record of changes and log-ins, kept for a year.
class Audit {
public:
    explicit Audit(Database& database) : database(database) {}

    void Add(const std::string& account, const std::string& action, const std::string& subject);
    /// The entries before the one with that id (0: the newest), the newest first.
    std::vector<AuditEntry> Entries(std::int64_t beforeId, int count);

    /// Adds an entry as a part of a transaction, and returns its id. Deletes some entries older than a year.
    static std::int64_t AddEntry(SqlConnection& connection, const std::string& account,
                                 const std::string& action, const std::string& subject);

private:
    Database& database;
};

}  // namespace kel::server
