// The part of SqlStore that keeps accounts, their log-ins, and who did what.
#include "server/store/Rows.h"
#include "server/store/SqlStore.h"

namespace kel::server {

namespace {

constexpr std::int64_t Year = 365LL * 24 * 3'600'000;  // milliseconds

Account AccountOf(const SqlRow& row)
{
    return {row.Text(0), row.Text(1), row.Text(2) == "editor" ? Role::Editor : Role::Reader};
}

}  // namespace

std::int64_t AddAuditEntry(SqlConnection& connection, const std::string& account, const std::string& action,
                           const std::string& subject)
{
    const SqlRows added = connection.Query(
        "INSERT INTO audit (time, account, action, subject) VALUES ($1, $2, $3, $4) RETURNING id",
        {Now(), account, action, subject});
    // Ids ascend with the time. Some at once, as most often there is none.
    connection.Query(
        "DELETE FROM audit WHERE id IN (SELECT id FROM audit ORDER BY id LIMIT 10) AND time < $1",
        {Now() - Year});
    return added.at(0).Number(0);
}

void SqlStore::Keep(const Account& account, const std::string& by)
{
    const std::string role = account.role == Role::Editor ? "editor" : "reader";
    Change([&](SqlConnection& connection) {
        connection.Query(
            "INSERT INTO account (name, hash, role) VALUES ($1, $2, $3) "
            "ON CONFLICT (name) DO UPDATE SET hash = excluded.hash, role = excluded.role",
            {account.name, account.hash, role});
        connection.Query("DELETE FROM login_session WHERE account = $1", {account.name});
        return AddAuditEntry(connection, by, "account written", account.name + ", " + role);
    });
}

std::optional<Account> SqlStore::FindAccount(const std::string& name)
{
    return First(Read("SELECT name, hash, role FROM account WHERE name = $1", {name}), AccountOf);
}

std::vector<Account> SqlStore::Accounts()
{
    return Each(Read("SELECT name, hash, role FROM account ORDER BY name"), AccountOf);
}

bool SqlStore::RemoveAccount(const std::string& name, const std::string& by)
{
    return Change([&](SqlConnection& connection) {
        return !connection.Query("DELETE FROM account WHERE name = $1 RETURNING name", {name}).empty() &&
               AddAuditEntry(connection, by, "account removed", name) != 0;
    });
}

bool SqlStore::Keep(const Login& login)
{
    return Change([&](SqlConnection& connection) {
        connection.Query("DELETE FROM login_session WHERE ends <= $1", {Now()});
        // A change of the password at the same time waits here or is waited for, and then ends the log-in.
        const SqlRows same =
            connection.Query("UPDATE account SET hash = hash WHERE name = $1 AND hash = $2 RETURNING name",
                             {login.account, login.hash});
        if (same.empty())
            return false;
        connection.Query(
            "INSERT INTO login_session (key, account, kind, form_token, ends) VALUES ($1, $2, $3, $4, $5)",
            {login.key, login.account, login.kind == LoginKind::Program ? "program" : "browser",
             login.formToken, login.ends});
        return true;
    });
}

std::optional<Login> SqlStore::FindLogin(const std::string& key)
{
    return First(Read("SELECT key, account, role, form_token, ends, kind FROM login_session "
                      "JOIN account ON account.name = login_session.account WHERE key = $1 AND ends > $2",
                      {key, Now()}),
                 [](const SqlRow& row) {
                     return Login{row.Text(0),
                                  row.Text(1),
                                  row.Text(2) == "editor" ? Role::Editor : Role::Reader,
                                  row.Text(3),
                                  row.Number(4),
                                  row.Text(5) == "program" ? LoginKind::Program : LoginKind::Browser};
                 });
}

void SqlStore::EndLogin(const std::string& key)
{
    Change([&](SqlConnection& connection) {
        connection.Query("DELETE FROM login_session WHERE key = $1", {key});
        return true;
    });
}

void SqlStore::Note(const std::string& account, const std::string& action, const std::string& subject)
{
    Change([&](SqlConnection& connection) { return AddAuditEntry(connection, account, action, subject); });
}

std::vector<AuditLine> SqlStore::Notes(std::int64_t beforeId, int count)
{
    const std::string before = beforeId > 0 ? "WHERE id < $2 " : "";
    std::vector<SqlValue> values{std::int64_t{count}};
    if (beforeId > 0)
        values.emplace_back(beforeId);
    const SqlRows rows =
        Read("SELECT id, time, account, action, subject FROM audit " + before + "ORDER BY id DESC LIMIT $1",
             values);
    return Each(rows, [](const SqlRow& row) {
        return AuditLine{row.Number(0), row.Number(1), row.Text(2), row.Text(3), row.Text(4)};
    });
}

}  // namespace kel::server
