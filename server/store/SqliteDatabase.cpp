#include "server/store/SqliteDatabase.h"

#include <stdexcept>

#include "server/store/SqliteStatement.h"

namespace kel::server {

namespace {

constexpr int BusyMilliseconds = 10'000;

}  // namespace

SqliteDatabase::SqliteDatabase(const std::string& path, Mode mode)
{
    sqlite3* opened = nullptr;
    const int flags =
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | (mode == Mode::Create ? SQLITE_OPEN_CREATE : 0);
    const int result = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
    database.reset(opened);
    if (result != SQLITE_OK)
        throw std::runtime_error(path + ": " + (opened ? sqlite3_errmsg(opened) : sqlite3_errstr(result)));
    sqlite3_busy_timeout(opened, BusyMilliseconds);
    // A power cut can lose the last uploads, never the file.
    Execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL; PRAGMA foreign_keys = ON;");
}

void SqliteDatabase::Execute(const std::string& sql)
{
    if (sqlite3_exec(Get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(std::string("database: ") + sqlite3_errmsg(Get()));
}

std::int64_t SqliteDatabase::Number(const std::string& sql)
{
    SqliteStatement statement(*this, sql);
    return statement.Step() ? statement.Number(0) : 0;
}

SqliteTransaction::SqliteTransaction(SqliteDatabase& database) : database(database)
{
    database.Execute("BEGIN IMMEDIATE");
}

SqliteTransaction::~SqliteTransaction()
{
    if (open)
        sqlite3_exec(database.Get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void SqliteTransaction::Commit()
{
    database.Execute("COMMIT");
    open = false;
}

}  // namespace kel::server
