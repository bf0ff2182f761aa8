#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "server/base/Fault.h"
#include "server/store/Room.h"
#include "server/store/SqlPool.h"

namespace kel::server {

/// Whether reports can be stored.
enum class DatabaseState { Ready, ReadOnly, NoRoom };

/// The service's database: connections, lent for a statement or a transaction, and the room that is left. The
/// classes beside it have the statements, which both kinds of database understand. Any thread may call.
/// Everything throws Fault 503 when the database fails, NoRoom when there is no room, and Fault 400 for a
/// text that is not UTF-8 or has a NUL.
class Database {
public:
    /// `quick` is for reads that must not wait for others, such as those of the published requirements. Two
    /// or all three may be the same pool. `file` is the SQLite file.
    Database(std::shared_ptr<SqlPool> quick, std::shared_ptr<SqlPool> readers,
             std::shared_ptr<SqlPool> writers, const std::string& file, const Bounds& bounds);

    /// Queries the database, and writes nothing.
    DatabaseState State();
    /// Whether reports are accepted, as far as is known without asking the database. Never throws or waits.
    bool HasRoom() const { return room.TakesReports(); }
    /// Bytes that are free for an SQLite file; -1 for a server.
    std::int64_t FreeBytes() const { return room.Free(); }
    /// The maximum number of reports of one session.
    std::int64_t MaxSessionReports() const { return maxSessionReports; }

    SqlPool::Lease BorrowQuick() { return quick->Borrow(); }
    SqlPool::Lease BorrowReader() { return readers->Borrow(); }
    /// A connection to write a report with. Throws NoRoom when there is no room for one.
    SqlPool::Lease BorrowForReport();
    /// The same for a verdict, which needs less room.
    SqlPool::Lease BorrowForVerdict();

    SqlRows Read(const std::string& sql, const std::vector<SqlValue>& values = {})
    {
        return readers->Borrow()->Query(sql, values);
    }
    /// Makes an operator's change in one transaction. When the disk is full, releases the reserve and tries
    /// once more. Returns what `work` returns; a result that converts to false undoes the change.
    template <typename Work>
    auto Change(Work work) -> decltype(work(std::declval<SqlConnection&>()));
    /// Removes deleted data from the write-ahead log, unless a reader still uses it.
    void TruncateWriteAheadLog();

private:
    template <typename Work>
    auto WithReserve(Work work) -> decltype(work());

    std::shared_ptr<SqlPool> quick, readers, writers;
    Room room;
    const std::int64_t maxSessionReports;
};

template <typename Work>
auto Database::WithReserve(Work work) -> decltype(work())
{
    try {
        return work();
    } catch (const NoRoom&) {
        if (!room.ReleaseReserve())
            throw;
    }
    return work();
}

template <typename Work>
auto Database::Change(Work work) -> decltype(work(std::declval<SqlConnection&>()))
{
    const auto connection = writers->Borrow();
    return WithReserve([&] {
        SqlTransaction transaction(*connection);
        auto result = work(*connection);
        if (result)
            transaction.Commit();
        return result;
    });
}

/// Milliseconds since 1970, UTC: the unit of all times that are stored.
std::int64_t Now();

}  // namespace kel::server
