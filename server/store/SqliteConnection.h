#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <unordered_map>

#include "server/store/FileIdentity.h"
#include "server/store/SqlConnection.h"

namespace kel::server {

/// An open SQLite file: write-ahead log, foreign keys, a wait of some seconds for another process's write.
class SqliteConnection final : public SqlConnection {
public:
    enum class Mode { Existing, Create };
    /// Full: each commit is on the disk. Normal: a power cut can lose the last ones, never the file.
    enum class Durability { Normal, Full };

    SqliteConnection(const std::string& path, Mode mode, Durability durability);

    void Execute(const std::string& sql) override;
    void Begin() override { Execute("BEGIN IMMEDIATE"); }
    /// Also true when the file has been removed or replaced, since writes to it would be lost.
    bool IsBroken() override;
    bool IsWritable() override;
    DatabaseSize Size() override;
    std::string_view UnindexedPrefix() const override { return "+"; }
    std::size_t LargeRowsAtOnce() const override { return 1; }
    void TruncateWriteAheadLog() override;
    std::span<const char* const> Migrations() const override;
    int Version() override;
    void SetVersion(int version) override;

protected:
    SqlRows Run(const std::string& sql, const std::vector<SqlValue>& values) override;

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    };
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

    sqlite3_stmt* Prepare(const std::string& sql);
    std::int64_t Number(const std::string& sql) { return Query(sql, {}).at(0).Number(); }
    [[noreturn]] void Fail();
    sqlite3* Get() const { return database.get(); }

    const std::string path;
    std::unique_ptr<sqlite3, Close> database;
    FileIdentity identity;
    std::unordered_map<std::string, Statement> statements;
    bool broken = false;  // the state of the file has changed, and a new connection may work
};

}  // namespace kel::server
