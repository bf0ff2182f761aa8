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

/// A parameter of a statement. A text has to live until the statement has run.
using SqlValue = std::variant<std::int64_t, std::string_view>;

/// A row of an answer, read column by column in the order of the SELECT.
class SqlRow {
public:
    explicit SqlRow(std::vector<std::string> columns) : columns(std::move(columns)) {}

    /// The next column; empty for NULL.
    std::string Text() { return std::move(columns.at(next++)); }
    /// The next column; 0 for NULL.
    std::int64_t Number()
    {
        const std::string text = Text();
        std::int64_t number = 0;
        std::from_chars(text.data(), text.data() + text.size(), number);
        return number;
    }
    /// The next column, where it is small.
    int Small() { return static_cast<int>(Number()); }

private:
    std::vector<std::string> columns;
    std::size_t next = 0;
};

using SqlRows = std::vector<SqlRow>;

/// The size of a database in bytes.
struct DatabaseSize {
    std::int64_t used = 0;      // by stored data
    std::int64_t reusable = 0;  // freed by deletions, for new data; 0 when not known
};

/// A connection to a database, for one thread at a time. Everything throws Fault 503 with the database's own
/// message when it fails, NoRoom when the disk is full.
class SqlConnection {
public:
    virtual ~SqlConnection() = default;

    /// Runs one statement, with $1, $2 and so on for the values, and returns its rows. Statements are
    /// prepared once, so their texts have to come from a small set. Throws Fault 400 for a text that is not
    /// UTF-8 or has a NUL, which not every database accepts.
    SqlRows Query(const std::string& sql, const std::vector<SqlValue>& values = {});
    /// Runs several statements without values.
    virtual void Execute(const std::string& sql) = 0;
    /// Begins a transaction that may write.
    virtual void Begin() = 0;
    /// Whether the connection can no longer be used.
    virtual bool IsBroken() = 0;
    /// Whether the database accepts writes. If it does not, the connection counts as broken, as another
    /// server may accept them.
    virtual bool IsWritable() = 0;
    virtual DatabaseSize Size() = 0;

    /// A prefix that keeps the database from using a column's index; empty where it chooses well by itself.
    virtual std::string_view UnindexedPrefix() const { return {}; }
    /// A further condition, from " AND" on, which keeps the database from reading rows of a table that an
    /// index alone can exclude: the key is one of those rows'; empty where the database does so by itself.
    virtual std::string OnlyIndexed(const std::string& /*table*/, const std::string& /*key*/,
                                    const std::string& /*condition*/) const
    {
        return {};
    }
    /// Whether each count by day is the sum of several rows, its parts.
    virtual bool HasCountParts() const { return false; }
    /// The end of a SELECT whose rows are about to be deleted, so that two deletions do not wait for each
    /// other; empty where only one connection can write.
    virtual std::string_view SkipLocked() const { return {}; }
    /// The end of such a SELECT that waits for locked rows.
    virtual std::string_view AwaitLocked() const { return {}; }
    /// The end of a SELECT whose rows of `report` must not be deleted before the statement's end; empty where
    /// only one connection can write.
    virtual std::string_view ShareReports() const { return {}; }
    /// How many rows with large texts one statement should read: many where each statement costs a network
    /// round trip, 1 where it costs less than the length of a text, which is only known by reading it.
    virtual std::size_t LargeRowsAtOnce() const = 0;
    /// Removes deleted data from the write-ahead log, unless a reader still uses it; does nothing for a
    /// database that manages its log itself.
    virtual void TruncateWriteAheadLog() {}
    /// The greatest id below which no further report will appear. Reports that arrive together may be
    /// committed in another order than that of their ids, so a reader that pages by id would miss some.
    virtual std::int64_t LastStableReportId() { return std::numeric_limits<std::int64_t>::max(); }

    /// The statements that lead from each version of the tables to the next, starting from nothing.
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

/// A transaction: everything until Commit takes effect together, or not at all without it.
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
