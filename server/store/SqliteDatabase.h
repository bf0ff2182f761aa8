#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace kel::server {

/// An open SQLite file: write-ahead log, foreign keys, a wait of some seconds for another process's write.
/// For one thread at a time. Everything throws std::runtime_error with SQLite's own words.
class SqliteDatabase {
public:
    enum class Mode { Existing, Create };

    SqliteDatabase(const std::string& path, Mode mode);

    /// Runs statements that answer nothing.
    void Execute(const std::string& sql);
    /// The one number that a statement answers.
    std::int64_t Number(const std::string& sql);
    sqlite3* Get() const { return database.get(); }

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    };

    std::unique_ptr<sqlite3, Close> database;
};

/// What happens until Commit is one step; without it, none of it happened.
class SqliteTransaction {
public:
    explicit SqliteTransaction(SqliteDatabase& database);
    ~SqliteTransaction();
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;

    void Commit();

private:
    SqliteDatabase& database;
    bool open = true;
};

}  // namespace kel::server
