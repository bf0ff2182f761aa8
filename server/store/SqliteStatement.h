#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "server/store/SqliteDatabase.h"

namespace kel::server {

/// A prepared statement. Everything throws std::runtime_error with SQLite's own words.
class SqliteStatement {
public:
    SqliteStatement(SqliteDatabase& database, const std::string& sql);

    /// Gives the parameters their values, in their order, after a reset.
    template <typename... Values>
    SqliteStatement& Bind(const Values&... values)
    {
        Reset();
        int index = 0;
        (BindOne(++index, values), ...);
        return *this;
    }

    /// The next row; false when there is none, and the statement is reset.
    bool Step();
    /// Runs to the end.
    void Run();
    /// Gives up the rows that were not read, and the lock on the file with them.
    void Reset();
    std::int64_t Number(int column) const;
    std::string Text(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    void BindOne(int index, std::int64_t value);
    void BindOne(int index, const std::string& value);  // which has to live until the statement ran
    void Check(int result) const;

    std::unique_ptr<sqlite3_stmt, Finalize> statement;
};

}  // namespace kel::server
