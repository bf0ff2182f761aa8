#pragma once

#include <charconv>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kel::server {

/// A parameter of a statement. A text has to live until the statement ran.
using SqlValue = std::variant<std::int64_t, std::string_view>;

/// A row of an answer.
class SqlRow {
public:
    explicit SqlRow(std::vector<std::string> columns) : columns(std::move(columns)) {}

    /// Empty for NULL.
    const std::string& Text(std::size_t column) const { return columns.at(column); }
    /// 0 for NULL.
    std::int64_t Number(std::size_t column) const
    {
        const std::string& text = columns.at(column);
        std::int64_t number = 0;
        std::from_chars(text.data(), text.data() + text.size(), number);
        return number;
    }

private:
    std::vector<std::string> columns;
};

using SqlRows = std::vector<SqlRow>;

/// A connection to a database, for one thread at a time. Everything throws Fault 503 with the database's own
/// words.
class SqlConnection {
public:
    virtual ~SqlConnection() = default;

    /// Runs one statement, with $1, $2 and so on for the values; what it answers. Statements are prepared
    /// once, so their texts come from a small set.
    virtual SqlRows Query(const std::string& sql, const std::vector<SqlValue>& values = {}) = 0;
    /// Runs several statements without values.
    virtual void Execute(const std::string& sql) = 0;
    /// Begins a transaction that may write.
    virtual void Begin() = 0;
    /// Whether the connection is of no use any more.
    virtual bool IsBroken() const = 0;

    /// The statements that lead from each version of the tables to the next, from nothing on.
    virtual std::span<const char* const> Migrations() const = 0;
    /// The version of the tables, 0 for an empty database. Throws std::runtime_error when it is another
    /// program's.
    virtual int Version() = 0;
    virtual void SetVersion(int version) = 0;
};

/// What happens until Commit is one step; without it, none of it happened.
class SqlTransaction {
public:
    explicit SqlTransaction(SqlConnection& connection) : connection(connection) { connection.Begin(); }
    ~SqlTransaction();
    SqlTransaction(const SqlTransaction&) = delete;
    SqlTransaction& operator=(const SqlTransaction&) = delete;

    void Commit();

private:
    SqlConnection& connection;
    bool open = true;
};

}  // namespace kel::server
