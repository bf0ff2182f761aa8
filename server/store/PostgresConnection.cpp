#include "server/store/PostgresConnection.h"

#include <fmt/format.h>
#include <poll.h>

#include <algorithm>
#include <stdexcept>

#include "server/base/Embedded.h"
#include "server/base/Fault.h"

namespace kel::server {

namespace {

using std::chrono::steady_clock;

// Longer than the server's statement_timeout, after which the connection stays usable.
constexpr std::chrono::seconds MaxWait{15}, MaxMigrationWait{24 * 3600};
constexpr std::chrono::milliseconds ProbeInterval{1000};
// A generic plan would scan everything for a rare value. Compiling a plan takes longer than these statements.
constexpr const char* Settings =
    "SET statement_timeout = '10s'; SET idle_in_transaction_session_timeout = '30s'; "
    "SET plan_cache_mode = force_custom_plan; SET jit = off";
constexpr const char* MigrationLock = "SELECT pg_advisory_xact_lock(1262832723)";  // "KELS"

/// Waits for one of these events, for at most that time. Returns those that occurred.
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
    : address(address),
      connection(this->address.Connect()),
      maxWait(patience == Patience::Request ? MaxWait : MaxMigrationWait)
{
    PQsetNoticeReceiver(Get(), Receive, this);
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
    // An idle connection becomes readable only when it ends.
    return lost || PQstatus(Get()) != CONNECTION_OK || PQtransactionStatus(Get()) != PQTRANS_IDLE ||
           Poll(Get(), POLLIN, {}) != 0;
}

bool PostgresConnection::IsWritable()
{
    const bool isWritable = Query("SHOW transaction_read_only").at(0).Text() == "off";
    lost = lost || !isWritable;
    return isWritable;
}

DatabaseSize PostgresConnection::Size()
{
    return {Query("SELECT pg_database_size(current_database())").at(0).Number(), 0};
}

std::span<const char* const> PostgresConnection::Migrations() const
{
    return PostgresMigrations;
}

int PostgresConnection::Version()
{
    SqlRow tables = Query(
                        "SELECT count(*), count(*) FILTER (WHERE tablename = 'kel_schema') "
                        "FROM pg_tables WHERE schemaname = current_schema()")
                        .at(0);
    if (tables.Number() == 0)
        return 0;
    if (tables.Number() == 0)
        throw std::runtime_error("the database is another program's");
    return static_cast<int>(Query("SELECT version FROM kel_schema").at(0).Number());
}

void PostgresConnection::SetVersion(int version)
{
    Execute(fmt::format("UPDATE kel_schema SET version = {}", version));
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

/// The server's answer: the last result. Throws a Fault for the first one that is an error.
PostgresConnection::Result PostgresConnection::Answer(int sent)
{
    if (sent == 0)
        Fail(PQerrorMessage(Get()));
    const auto end = steady_clock::now() + maxWait;
    Result last;
    std::string error;
    isFull = isUnreplicated = false;
    for (;;) {
        while (PQflush(Get()) == 1 || PQisBusy(Get()) != 0)
            Wait(end);
        Result next(PQgetResult(Get()));
        if (!next)
            break;
        const ExecStatusType status = PQresultStatus(next.get());
        if (error.empty() && status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
            error = PQresultErrorMessage(next.get());
            Take(next.get());
        }
        last = std::move(next);
    }
    if (!error.empty() || !last)
        Fail(error.empty() ? PQerrorMessage(Get()) : error);
    if (isUnreplicated)
        Fail("the standby has not confirmed the commit");
    return last;
}

/// Records what an error means for the connection.
void PostgresConnection::Take(const PGresult* error)
{
    const char* field = PQresultErrorField(error, PG_DIAG_SQLSTATE);
    const std::string_view state = field ? field : "";
    // The server is read-only or shutting down; another one, or this one after a restart, may accept the
    // request.
    lost = lost || state == "25006" || state.starts_with("57P0");
    isFull = state == "53100";
}

void PostgresConnection::Receive(void* connection, const PGresult* notice)
{
    // The server ends the wait for a synchronous standby at the statement's time limit. By then it has
    // committed, and warns that the commit could be lost.
    const char* source = PQresultErrorField(notice, PG_DIAG_SOURCE_FUNCTION);
    if (source && std::string_view(source) == "SyncRepWaitForLSN")
        static_cast<PostgresConnection*>(connection)->isUnreplicated = true;
}

/// Waits until the connection is readable, or can send more.
void PostgresConnection::Wait(steady_clock::time_point end)
{
    const auto events = static_cast<short>(PQflush(Get()) == 1 ? POLLIN | POLLOUT : POLLIN);
    for (int ready = 0; ready == 0;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - steady_clock::now());
        if (left.count() <= 0) {
            lost = true;
            Fail(fmt::format("no answer for {} seconds", maxWait.count()));
        }
        ready = Poll(Get(), events, std::min(left, ProbeInterval));
        if (ready == 0 && address.HasOtherPrimary(Get())) {
            lost = true;
            Fail("another server has taken over");
        }
    }
    if (PQconsumeInput(Get()) == 0) {
        lost = true;
        Fail(PQerrorMessage(Get()));
    }
}

void PostgresConnection::Fail(const std::string& reason) const
{
    const std::string text = "database: " + reason.substr(0, reason.find_last_not_of('\n') + 1);
    if (isFull)
        throw NoRoom(text);
    throw Fault(Unavailable, text);
}

}  // namespace kel::server
