#include "server/store/SqliteStatement.h"

#include <stdexcept>

namespace kel::server {

SqliteStatement::SqliteStatement(SqliteDatabase& database, const std::string& sql)
{
    sqlite3_stmt* prepared = nullptr;
    const int result =
        sqlite3_prepare_v3(database.Get(), sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    statement.reset(prepared);
    if (result != SQLITE_OK)
        throw std::runtime_error(std::string("database: ") + sqlite3_errmsg(database.Get()));
}

bool SqliteStatement::Step()
{
    const int result = sqlite3_step(statement.get());
    if (result == SQLITE_ROW)
        return true;
    if (result != SQLITE_DONE) {
        const std::string why = sqlite3_errmsg(sqlite3_db_handle(statement.get()));
        Reset();
        throw std::runtime_error("database: " + why);
    }
    Reset();
    return false;
}

void SqliteStatement::Run()
{
    while (Step()) {
    }
}

void SqliteStatement::Reset()
{
    sqlite3_reset(statement.get());
    sqlite3_clear_bindings(statement.get());
}

std::int64_t SqliteStatement::Number(int column) const
{
    return sqlite3_column_int64(statement.get(), column);
}

std::string SqliteStatement::Text(int column) const
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), column));
    return text ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement.get(), column)))
                : std::string();
}

void SqliteStatement::BindOne(int index, std::int64_t value)
{
    Check(sqlite3_bind_int64(statement.get(), index, value));
}

void SqliteStatement::BindOne(int index, const std::string& value)
{
    Check(
        sqlite3_bind_text64(statement.get(), index, value.data(), value.size(), SQLITE_STATIC, SQLITE_UTF8));
}

void SqliteStatement::Check(int result) const
{
    if (result != SQLITE_OK)
        throw std::runtime_error(std::string("database: ") +
                                 sqlite3_errmsg(sqlite3_db_handle(statement.get())));
}

}  // namespace kel::server
