#include "server/store/Database.h"

#include <chrono>
#include <limits>

namespace kel::server {

Database::Database(std::shared_ptr<SqlPool> quick, std::shared_ptr<SqlPool> readers,
                   std::shared_ptr<SqlPool> writers, const std::string& file, const Bounds& bounds)
    : quick(std::move(quick)),
      readers(std::move(readers)),
      writers(std::move(writers)),
      room(file, bounds),
      maxSessionReports(bounds.sessionReports > 0 ? bounds.sessionReports
                                                  : std::numeric_limits<std::int64_t>::max())
{
}

DatabaseState Database::State()
{
    const auto connection = quick->Borrow();
    connection->Query("SELECT count(*) FROM (SELECT 1 FROM requirement_set LIMIT 1) AS any_set");
    if (!connection->IsWritable())
        return DatabaseState::ReadOnly;
    room.Measure(*connection);
    return HasRoom() ? DatabaseState::Ready : DatabaseState::NoRoom;
}

SqlPool::Lease Database::BorrowForReport()
{
    SqlPool::Lease connection = writers->Borrow();
    room.RequireForReport(*connection);
    return connection;
}

SqlPool::Lease Database::BorrowForVerdict()
{
    SqlPool::Lease connection = writers->Borrow();
    room.RequireForVerdict(*connection);
    return connection;
}

void Database::TruncateWriteAheadLog()
{
    const auto connection = writers->Borrow();
    WithReserve([&] { connection->TruncateWriteAheadLog(); });
    room.Measure(*connection);
}

std::int64_t Now()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

}  // namespace kel::server
