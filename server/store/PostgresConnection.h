#pragma once

#include <libpq-fe.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "server/store/PostgresAddress.h"
#include "server/store/SqlConnection.h"

namespace kel::server {

/// A connection to a PostgreSQL server. Every wait has a limit: for a connection, for a statement, and for a
/// network that has gone silent.
class PostgresConnection final : public SqlConnection {
public:
    /// How long a statement may take; a migration may take as long as it needs.
    enum class Patience { Request, Migration };

    /// Whether the setting `database` names a PostgreSQL server.
    static bool IsAddress(std::string_view database);

    PostgresConnection(const std::string& address, Patience patience);

    void Execute(const std::string& sql) override;
    void Begin() override { Execute("BEGIN"); }
    bool IsBroken() override;
    bool IsWritable() override;
    DatabaseSize Size() override;
    std::string_view SkipLocked() const override { return " FOR UPDATE SKIP LOCKED"; }
    std::string OnlyIndexed(const std::string& table, const std::string& key,
                            const std::string& condition) const override
    {
        return " AND " + table + "." + key + " = ANY (ARRAY(SELECT " + key + " FROM " + table + " WHERE " +
               condition + "))";
    }
    bool HasCountParts() const override { return true; }
    std::string_view AwaitLocked() const override { return " FOR UPDATE"; }
    std::string_view ShareReports() const override { return " FOR KEY SHARE OF report"; }
    std::size_t LargeRowsAtOnce() const override { return 250; }
    std::int64_t LastStableReportId() override { return Query("SELECT settled_report()").at(0).Number(); }
    std::span<const char* const> Migrations() const override;
    int Version() override;
    void SetVersion(int version) override;
    void BeginMigration() override;

protected:
    SqlRows Run(const std::string& sql, const std::vector<SqlValue>& values) override;

private:
    struct Clear {
        void operator()(PGresult* result) const { PQclear(result); }
    };
    using Result = std::unique_ptr<PGresult, Clear>;

    const std::string& Prepare(const std::string& sql);
    Result Answer(int sent);
    void Wait(std::chrono::steady_clock::time_point end);
    static void Receive(void* connection, const PGresult* notice);
    void Take(const PGresult* error);
    [[noreturn]] void Fail(const std::string& reason) const;
    PGconn* Get() const { return connection.get(); }

    const PostgresAddress address;
    PostgresHandle connection;
    std::unordered_map<std::string, std::string> names;  // of the prepared statements
    std::chrono::seconds maxWait;
    bool lost = false;
    bool isFull = false;          // the statement failed because the server's disk is full
    bool isUnreplicated = false;  // the statement's commit has not reached the standby
};

}  // namespace kel::server
