// The part of SqlStore that deletes reports.
#include "server/store/SqlStore.h"

namespace kel::server {

namespace {

/// Adds reports to the entry of a deletion, inside of its transaction.
DeletionEntry Written(SqlConnection& connection, DeletionEntry entry, int count)
{
    entry.reports += count;
    const std::string subject = entry.subject + ", " + std::to_string(entry.reports) + " reports";
    if (entry.id == 0)
        entry.id = AddAuditEntry(connection, entry.account, entry.action, subject);
    else if (count > 0)
        connection.Query("UPDATE audit SET subject = $1 WHERE id = $2", {subject, entry.id});
    return entry;
}

}  // namespace

int SqlStore::DeleteOlder(std::int64_t time, int most, DeletionEntry* entry)
{
    return Delete("received < $1 ORDER BY received", time, most, entry);
}

int SqlStore::DeleteSession(const std::string& session, int most, DeletionEntry* entry)
{
    return Delete("session = $1 ORDER BY id", session, most, entry);
}

int SqlStore::DeleteMachine(const std::string& machine, int most, DeletionEntry* entry)
{
    return Delete("machine = $1 AND machine <> '' ORDER BY id", machine, most, entry);
}

int SqlStore::Delete(const std::string& condition, SqlValue value, int most, DeletionEntry* entry)
{
    const std::string rows = "SELECT id FROM report WHERE " + condition + " LIMIT $2";
    DeletionEntry written;
    const auto deleteSome = [&](SqlConnection& connection) {
        const auto run = [&](std::string_view locked) {
            return static_cast<int>(
                connection
                    .Query("DELETE FROM report WHERE id IN (" + rows + std::string(locked) + ") RETURNING id",
                           {value, std::int64_t{most}})
                    .size());
        };
        int count = run(connection.SkipLocked());
        // What is left may be in use by a verdict, or by another that deletes.
        if (count == 0 && !connection.SkipLocked().empty())
            count = run(connection.AwaitLocked());
        if (entry)
            written = Written(connection, *entry, count);
        return std::optional(count);
    };
    // What is overwritten goes through the write-ahead log: where there is little room, less at a time.
    for (;; most = most / 4 + 1) {
        try {
            const int count = *Change(deleteSome);
            if (entry)
                *entry = written;
            return count;
        } catch (const NoRoom&) {
            if (most == 1)
                throw;
        }
    }
}

std::int64_t SqlStore::NewestBefore(std::int64_t time)
{
    const SqlRows rows =
        Read("SELECT received FROM report WHERE received < $1 ORDER BY received DESC LIMIT 1", {time});
    return rows.empty() ? 0 : rows[0].Number(0);
}

void SqlStore::EndDeletion()
{
    const auto connection = writers->Borrow();
    WithReserve([&] { connection->EmptyLog(); });
    room.Measure(*connection);
}

}  // namespace kel::server
