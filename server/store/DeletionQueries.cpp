// The part of Reports that deletes them.
#include "server/store/Audit.h"

#include <fmt/format.h>

#include "server/store/Reports.h"

namespace kel::server {

namespace {

/// Adds a number of reports to the entry of a deletion, inside its transaction.
DeletionEntry Written(SqlConnection& connection, DeletionEntry entry, int count)
{
    entry.reports += count;
    const std::string subject = fmt::format("{}, {} reports", entry.subject, entry.reports);
    if (entry.id == 0)
        entry.id = Audit::AddEntry(connection, entry.account, entry.action, subject);
    else if (count > 0)
        connection.Query("UPDATE audit SET subject = $1 WHERE id = $2", {subject, entry.id});
    return entry;
}

}  // namespace

int Reports::DeleteOlder(std::int64_t time, int maxCount, DeletionEntry* entry)
{
    return Delete("received < $1 ORDER BY received", time, maxCount, entry);
}

int Reports::DeleteSession(const std::string& session, int maxCount, DeletionEntry* entry)
{
    return Delete("session = $1 ORDER BY id", session, maxCount, entry);
}

int Reports::DeleteMachine(const std::string& machine, int maxCount, DeletionEntry* entry)
{
    return Delete("machine = $1 AND machine <> '' ORDER BY id", machine, maxCount, entry);
}

int Reports::Delete(const std::string& condition, SqlValue value, int maxCount, DeletionEntry* entry)
{
    const std::string rows = "SELECT id FROM report WHERE " + condition + " LIMIT $2";
    DeletionEntry written;
    const auto deleteSome = [&](SqlConnection& connection) {
        const auto run = [&](std::string_view locked) {
            return static_cast<int>(
                connection
                    .Query("DELETE FROM report WHERE id IN (" + rows + std::string(locked) + ") RETURNING id",
                           {value, std::int64_t{maxCount}})
                    .size());
        };
        int count = run(connection.SkipLocked());
        // The remaining reports may be in use by a verdict, or by another deletion.
        if (count == 0 && !connection.SkipLocked().empty())
            count = run(connection.AwaitLocked());
        if (entry)
            written = Written(connection, *entry, count);
        return std::optional(count);
    };
    // Overwritten data go through the write-ahead log: when there is little room, delete fewer at a time.
    for (;; maxCount = maxCount / 4 + 1) {
        try {
            const int count = *database.Change(deleteSome);
            if (entry)
                *entry = written;
            return count;
        } catch (const NoRoom&) {
            if (maxCount == 1)
                throw;
        }
    }
}

}  // namespace kel::server
