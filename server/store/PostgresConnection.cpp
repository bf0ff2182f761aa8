#include "server/store/PostgresConnection.h"

#include <poll.h>

#include <array>
#include <stdexcept>

#include "server/base/Fault.h"
#include "server/store/Migrations.h"

namespace kel::server {

namespace {

using std::chrono::steady_clock;

constexpr int Unavailable = 503;
// The server ends a statement first, and the connection stays good.
constexpr std::chrono::seconds Longest{15}, LongestMigration{24 * 3600};
// A plan for any value would walk through everything for one that is rare.
constexpr const char* Settings =
    "SET statement_timeout = '10s'; SET idle_in_transaction_session_timeout = '30s'; "
    "SET plan_cache_mode = force_custom_plan";
constexpr const char* MigrationLock = "SELECT pg_advisory_xact_lock(1262832723)";  // "KELS"

/// The events of these that have come; waits until then or the end.
int Poll(PGconn* connection, short events, std::chrono::milliseconds time)
{
    pollfd socket{PQsocket(connection), events, 0};
    return poll(&socket, 1, static_cast<int>(time.count()));
}

}  // namespace

bool PostgresConnection::IsAddress(std::string_view database)
{
    return database.starts_with("postgresql://") || database.starts_with("postgres://");
}

PostgresConnection::PostgresConnection(const std::string& address, Patience patience)
    : longest(patience == Patience::Request ? Longest : LongestMigration)
{
    // The address may say otherwise of what stands before it.
    const std::array<const char*, 9> names{
        "connect_timeout",  "fallback_application_name", "keepalives_idle", "keepalives_interval",
        "keepalives_count", "tcp_user_timeout",          "dbname",          "client_encoding"};
    const std::array<const char*, 9> texts{"5",     "kel_server",    "30",  "5", "3",
                                           "20000", address.c_str(), "UTF8"};
    connection.reset(PQconnectdbParams(names.data(), texts.data(), 1));
    if (PQstatus(Get()) != CONNECTION_OK) {
        std::string reason = PQerrorMessage(Get());
        const std::size_t found = reason.find(address);  // with a password, perhaps
        Fail(found == std::string::npos ? reason : reason.replace(found, address.size(), "the address"));
    }
    PQsetNoticeProcessor(
        Get(), [](void*, const char*) {}, nullptr);
    PQsetnonblocking(Get(), 1);
    if (patience == Patience::Request)
        Execute(Settings);
}

SqlRows PostgresConnection::Run(const std::string& sql, const std::vector<SqlValue>& values)
{
    std::vector<std::string> copies;
    copies.reserve(values.size());
    for (const SqlValue& value : values) {
        const auto* number = std::get_if<std::int64_t>(&value);
        copies.emplace_back(number ? std::to_string(*number)
                                   : std::string(std::get<std::string_view>(value)));
    }
    std::vector<const char*> texts;
    texts.reserve(copies.size());
    for (const std::string& copy : copies)
        texts.push_back(copy.c_str());
    const std::string& name = Prepare(sql);
    const Result result = Answer(PQsendQueryPrepared(Get(), name.c_str(), static_cast<int>(texts.size()),
                                                     texts.data(), nullptr, nullptr, 0));
    SqlRows rows;
    for (int row = 0; row < PQntuples(result.get()); ++row) {
        std::vector<std::string> columns;
        columns.reserve(static_cast<std::size_t>(PQnfields(result.get())));
        for (int column = 0; column < PQnfields(result.get()); ++column)
            columns.emplace_back(PQgetvalue(result.get(), row, column),
                                 static_cast<std::size_t>(PQgetlength(result.get(), row, column)));
        rows.emplace_back(std::move(columns));
    }
    return rows;
}

void PostgresConnection::Execute(const std::string& sql)
{
    Answer(PQsendQuery(Get(), sql.c_str()));
}

bool PostgresConnection::IsBroken()
{
    // A connection that rests has nothing to read but its end.
    return lost || PQstatus(Get()) != CONNECTION_OK || PQtransactionStatus(Get()) != PQTRANS_IDLE ||
           Poll(Get(), POLLIN, {}) != 0;
}

std::span<const char* const> PostgresConnection::Migrations() const
{
    return PostgresMigrations;
}

int PostgresConnection::Version()
{
    const SqlRow tables = Query(
                              "SELECT count(*), count(*) FILTER (WHERE tablename = 'kel_schema') "
                              "FROM pg_tables WHERE schemaname = current_schema()")
                              .at(0);
    if (tables.Number(0) == 0)
        return 0;
    if (tables.Number(1) == 0)
        throw std::runtime_error("the database is another program's");
    return static_cast<int>(Query("SELECT version FROM kel_schema").at(0).Number(0));
}

void PostgresConnection::SetVersion(int version)
{
    Execute("UPDATE kel_schema SET version = " + std::to_string(version));
}

void PostgresConnection::BeginMigration()
{
    Begin();
    Execute(MigrationLock);
}

const std::string& PostgresConnection::Prepare(const std::string& sql)
{
    const auto found = names.find(sql);
    if (found != names.end())
        return found->second;
    const std::string name = "s" + std::to_string(names.size());
    Answer(PQsendPrepare(Get(), name.c_str(), sql.c_str(), 0, nullptr));
    return names.emplace(sql, name).first->second;
}

/// What the server answers to what was sent: the last result, or a Fault for the first that is an error.
PostgresConnection::Result PostgresConnection::Answer(int sent)
{
    if (sent == 0)
        Fail(PQerrorMessage(Get()));
    const auto end = steady_clock::now() + longest;
    Result last;
    std::string error;
    for (;;) {
        while (PQflush(Get()) == 1 || PQisBusy(Get()) != 0)
            Wait(end);
        Result next(PQgetResult(Get()));
        if (!next)
            break;
        const ExecStatusType status = PQresultStatus(next.get());
        if (error.empty() && status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK)
            error = PQresultErrorMessage(next.get());
        last = std::move(next);
    }
    if (!error.empty() || !last)
        Fail(error.empty() ? PQerrorMessage(Get()) : error);
    return last;
}

/// Waits until the connection has something to read, or can take more of what is to be sent.
void PostgresConnection::Wait(steady_clock::time_point end)
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - steady_clock::now());
    const auto events = static_cast<short>(PQflush(Get()) == 1 ? POLLIN | POLLOUT : POLLIN);
    if (left.count() <= 0 || Poll(Get(), events, left) == 0) {
        lost = true;
        Fail("no answer for " + std::to_string(longest.count()) + " seconds");
    }
    if (PQconsumeInput(Get()) == 0) {
        lost = true;
        Fail(PQerrorMessage(Get()));
    }
}

void PostgresConnection::Fail(const std::string& reason) const
{
    throw Fault(Unavailable, "database: " + reason.substr(0, reason.find_last_not_of('\n') + 1));
}

}  // namespace kel::server
