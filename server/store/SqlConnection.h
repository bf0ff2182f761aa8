#pragma once

#include <charconv>
#include <cstdint>
#include <limits>
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

/// Bytes of a database.
struct DatabaseSize {
    std::int64_t used = 0;      // what is stored takes
    std::int64_t reusable = 0;  // left by what was deleted, for what is stored next; 0 when not known
};

/// A connection to a database, for one thread at a time. Everything throws Fault 503 with the database's own
/// words when it fails, NoRoom when the disk is full.
class SqlConnection {
public:
    virtual ~SqlConnection() = default;

    /// Runs one statement, with $1, $2 and so on for the values; what it answers. Statements are prepared
    /// once, so their texts come from a small set. Throws Fault 400 for a text that is no UTF-8 or has a NUL,
    /// which not every database takes.
    SqlRows Query(const std::string& sql, const std::vector<SqlValue>& values = {});
    /// Runs several statements without values.
    virtual void Execute(const std::string& sql) = 0;
    /// Begins a transaction that may write.
    virtual void Begin() = 0;
    /// Whether the connection is of no use any more.
    virtual bool IsBroken() = 0;
    /// Whether the database takes writes; one that does not breaks the connection, as another may.
    virtual bool IsWritable() = 0;
    virtual DatabaseSize Size() = 0;

    /// What keeps a column from an index, put before it; empty where the database knows what it does.
    virtual std::string_view NoIndex() const { return {}; }
    /// What a SELECT ends with whose rows are about to be deleted, so that two who delete do not wait for
    /// each other; empty where only one can write.
    virtual std::string_view SkipLocked() const { return {}; }
    /// What such a SELECT ends with to wait for rows that are locked.
    virtual std::string_view AwaitLocked() const { return {}; }
    /// What a SELECT ends with so that the rows of `report` it reads are not deleted before the statement's
    /// end; empty where only one can write.
    virtual std::string_view ShareReports() const { return {}; }
    /// How many rows with large texts are worth one statement: many where each statement costs a journey over
    /// a network, few where the length of a text is only known by reading it.
    virtual std::size_t LargeRowsAtOnce() const = 0;
    /// Takes what was deleted out of the log that writes go through, unless somebody reads by it; for a
    /// database that looks after its log itself, nothing.
    virtual void EmptyLog() {}
    /// No report will come any more with an id up to this one. Reports that arrive together may be seen in
    /// another order than that of their ids, and who goes through them by id would miss some.
    virtual std::int64_t SettledReport() { return std::numeric_limits<std::int64_t>::max(); }

    /// The statements that lead from each version of the tables to the next, from nothing on.
    virtual std::span<const char* const> Migrations() const = 0;
    /// The version of the tables, 0 for an empty database. Throws std::runtime_error when it is another
    /// program's.
    virtual int Version() = 0;
    virtual void SetVersion(int version) = 0;
    /// Begins a transaction once no other process changes the tables.
    virtual void BeginMigration() { Begin(); }

protected:
    virtual SqlRows Run(const std::string& sql, const std::vector<SqlValue>& values) = 0;
};

/// What happens until Commit is one step; without it, none of it happened.
class SqlTransaction {
public:
    explicit SqlTransaction(SqlConnection& connection, void (SqlConnection::*begin)() = &SqlConnection::Begin)
        : connection(connection)
    {
        (connection.*begin)();
    }
    ~SqlTransaction();
    SqlTransaction(const SqlTransaction&) = delete;
    SqlTransaction& operator=(const SqlTransaction&) = delete;

    void Commit();

private:
    SqlConnection& connection;
    bool open = true;
};

}  // namespace kel::server
