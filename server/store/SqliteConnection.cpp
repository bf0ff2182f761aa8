#include "server/store/SqliteConnection.h"

#include <fmt/format.h>
#include <cerrno>
#include <stdexcept>

#include "server/base/Embedded.h"
#include "server/base/Fault.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr int BusyMilliseconds = 10'000;
constexpr int LogMilliseconds = 200;
constexpr std::int64_t ApplicationId =
    0x4B454C53;  // "KELS": distinguishes the file from other programs' databases

/// Resets a statement at the end of its use, which releases its values and the lock on the file.
class Use {
public:
    explicit Use(sqlite3_stmt* statement) : statement(statement) {}
    ~Use()
    {
        sqlite3_reset(statement);
        sqlite3_clear_bindings(statement);
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

private:
    sqlite3_stmt* statement;
};

bool LooksLikeAddress(const std::string& path)
{
    const std::size_t colon = path.find(':'), at = path.rfind('@');
    return path.find("://") != path.npos || (colon != path.npos && at != path.npos && colon < at) ||
           (colon != path.npos && Lower(path).starts_with("postgres"));
}

int Bind(sqlite3_stmt* statement, int index, const SqlValue& value)
{
    if (const auto* number = std::get_if<std::int64_t>(&value))
        return sqlite3_bind_int64(statement, index, *number);
    const auto& text = std::get<std::string_view>(value);
    return sqlite3_bind_text64(statement, index, text.empty() ? "" : text.data(), text.size(), SQLITE_STATIC,
                               SQLITE_UTF8);
}

std::string Column(sqlite3_stmt* statement, int column)
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return text ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)))
                : std::string();
}

/// SQL's octet_length, which PostgreSQL and newer versions of SQLite have.
void OctetLength(sqlite3_context* context, int, sqlite3_value** values)
{
    sqlite3_result_int(context, sqlite3_value_bytes(*values));
}

}  // namespace

SqliteConnection::SqliteConnection(const std::string& path, Mode mode, Durability durability) : path(path)
{
    // Another kind of address, or a mistyped one, may contain a password, so it is not repeated.
    if (LooksLikeAddress(path))
        throw std::runtime_error("the database is neither a file nor an address of PostgreSQL");
    sqlite3* opened = nullptr;
    const int flags =
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | (mode == Mode::Create ? SQLITE_OPEN_CREATE : 0);
    const int result = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
    database.reset(opened);
    if (result != SQLITE_OK && mode == Mode::Existing && FileIdentity::Of(path) == FileIdentity())
        throw Fault(Unavailable,
                    fmt::format("database: there is no file {}; create it with the command migrate", path));
    if (result != SQLITE_OK)
        throw Fault(Unavailable, fmt::format("database: {}: {}", path,
                                             opened ? sqlite3_errmsg(opened) : sqlite3_errstr(result)));
    sqlite3_busy_timeout(opened, BusyMilliseconds);
    sqlite3_create_function(opened, "octet_length", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                            OctetLength, nullptr, nullptr);
    // Deleted data are overwritten, whatever the library's build options are.
    Execute("PRAGMA journal_mode = WAL; PRAGMA foreign_keys = ON; PRAGMA secure_delete = ON");
    Execute(durability == Durability::Full ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
    identity = FileIdentity::Of(path);
}

SqlRows SqliteConnection::Run(const std::string& sql, const std::vector<SqlValue>& values)
{
    sqlite3_stmt* statement = Prepare(sql);
    const Use use(statement);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const int index = sqlite3_bind_parameter_index(statement, ("$" + std::to_string(i + 1)).c_str());
        if (Bind(statement, index, values[i]) != SQLITE_OK)
            Fail();
    }
    SqlRows rows;
    int result = SQLITE_ROW;
    while ((result = sqlite3_step(statement)) == SQLITE_ROW) {
        std::vector<std::string> columns;
        columns.reserve(static_cast<std::size_t>(sqlite3_column_count(statement)));
        for (int column = 0; column < sqlite3_column_count(statement); ++column)
            columns.push_back(Column(statement, column));
        rows.emplace_back(std::move(columns));
    }
    if (result != SQLITE_DONE)
        Fail();
    return rows;
}

void SqliteConnection::Execute(const std::string& sql)
{
    if (sqlite3_exec(Get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        Fail();
}

bool SqliteConnection::IsBroken()
{
    return broken || sqlite3_get_autocommit(Get()) == 0 || FileIdentity::Of(path) != identity;
}

bool SqliteConnection::IsWritable()
{
    const bool isWritable = sqlite3_db_readonly(Get(), "main") == 0;
    broken = broken || !isWritable;
    return isWritable;
}

DatabaseSize SqliteConnection::Size()
{
    const std::int64_t page = Number("PRAGMA page_size"), unused = Number("PRAGMA freelist_count");
    return {(Number("PRAGMA page_count") - unused) * page, unused * page};
}

void SqliteConnection::TruncateWriteAheadLog()
{
    // Writers are blocked meanwhile, so do not wait for a long reader, such as a backup.
    sqlite3_busy_timeout(Get(), LogMilliseconds);
    Query("PRAGMA wal_checkpoint(TRUNCATE)");
    sqlite3_busy_timeout(Get(), BusyMilliseconds);
}

std::span<const char* const> SqliteConnection::Migrations() const
{
    return SqliteMigrations;
}

int SqliteConnection::Version()
{
    const std::int64_t version = Number("PRAGMA user_version");
    const bool empty = version == 0 && Number("SELECT count(*) FROM sqlite_schema") == 0;
    if (!empty && Number("PRAGMA application_id") != ApplicationId)
        throw std::runtime_error("the database is another program's");
    return static_cast<int>(version);
}

void SqliteConnection::SetVersion(int version)
{
    Execute(fmt::format("PRAGMA application_id = {}; PRAGMA user_version = {}", ApplicationId, version));
}

sqlite3_stmt* SqliteConnection::Prepare(const std::string& sql)
{
    const auto found = statements.find(sql);
    if (found != statements.end())
        return found->second.get();
    sqlite3_stmt* prepared = nullptr;
    const int result =
        sqlite3_prepare_v3(Get(), sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    Statement statement(prepared);
    if (result != SQLITE_OK)
        Fail();
    return statements.emplace(sql, std::move(statement)).first->second.get();
}

void SqliteConnection::Fail()
{
    // For this connection, a file that was not writable when it was opened would stay so.
    const int code = sqlite3_errcode(Get());
    broken = broken || code == SQLITE_READONLY || code == SQLITE_IOERR || code == SQLITE_CANTOPEN ||
             code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
    const std::string reason = std::string("database: ") + sqlite3_errmsg(Get());
    const bool isSystems = code == SQLITE_IOERR || code == SQLITE_CANTOPEN;
    const int system = isSystems ? sqlite3_system_errno(Get()) : 0;
    if (code == SQLITE_FULL || system == ENOSPC)
        throw NoRoom(reason);
    throw Fault(Unavailable, reason);
}

}  // namespace kel::server
