#include "server/store/Accounts.h"

#include <fmt/format.h>

#include "server/store/Audit.h"
#include "server/store/Rows.h"

namespace kel::server {

namespace {

constexpr const char *Browser = "browser", *Program = "program";

Account ReadAccount(SqlRow& row)
{
    return {row.Text(), row.Text(), ParseRole(row.Text()).value_or(Role::Reader)};
}

Login ReadLogin(SqlRow& row)
{
    return {row.Text(), row.Text(),   ParseRole(row.Text()).value_or(Role::Reader),
            row.Text(), row.Number(), row.Text() == Program ? LoginKind::Program : LoginKind::Browser};
}

}  // namespace

std::string_view ToString(Role role)
{
    return role == Role::Editor ? "editor" : "reader";
}

std::optional<Role> ParseRole(std::string_view text)
{
    for (const Role role : {Role::Reader, Role::Editor}) {
        if (text == ToString(role))
            return role;
    }
    return std::nullopt;
}

void Accounts::Save(const Account& account, const std::string& by)
{
    const std::string role(ToString(account.role));
    database.Change([&](SqlConnection& connection) {
        connection.Query(
            "INSERT INTO account (name, hash, role) VALUES ($1, $2, $3) "
            "ON CONFLICT (name) DO UPDATE SET hash = excluded.hash, role = excluded.role",
            {account.name, account.hash, role});
        connection.Query("DELETE FROM login_session WHERE account = $1", {account.name});
        return Audit::AddEntry(connection, by, "account written", fmt::format("{}, {}", account.name, role));
    });
}

std::optional<Account> Accounts::Find(const std::string& name)
{
    return First(database.Read("SELECT name, hash, role FROM account WHERE name = $1", {name}), ReadAccount);
}

std::vector<Account> Accounts::List()
{
    return Each(database.Read("SELECT name, hash, role FROM account ORDER BY name"), ReadAccount);
}

bool Accounts::Remove(const std::string& name, const std::string& by)
{
    return database.Change([&](SqlConnection& connection) {
        return !connection.Query("DELETE FROM account WHERE name = $1 RETURNING name", {name}).empty() &&
               Audit::AddEntry(connection, by, "account removed", name) != 0;
    });
}

bool Accounts::AddLogin(const Login& login)
{
    return database.Change([&](SqlConnection& connection) {
        connection.Query("DELETE FROM login_session WHERE ends <= $1", {Now()});
        // A concurrent change of the password waits for this update, and then ends the log-in; or this update
        // waits for the change, and finds another hash.
        const SqlRows same =
            connection.Query("UPDATE account SET hash = hash WHERE name = $1 AND hash = $2 RETURNING name",
                             {login.account, login.hash});
        if (same.empty())
            return false;
        connection.Query(
            "INSERT INTO login_session (key, account, kind, form_token, ends) VALUES ($1, $2, $3, $4, $5)",
            {login.key, login.account, login.kind == LoginKind::Program ? Program : Browser, login.formToken,
             login.ends});
        return true;
    });
}

std::optional<Login> Accounts::FindLogin(const std::string& key)
{
    return First(
        database.Read("SELECT key, account, role, form_token, ends, kind FROM login_session "
                      "JOIN account ON account.name = login_session.account WHERE key = $1 AND ends > $2",
                      {key, Now()}),
        ReadLogin);
}

void Accounts::EndLogin(const std::string& key)
{
    database.Change([&](SqlConnection& connection) {
        connection.Query("DELETE FROM login_session WHERE key = $1", {key});
        return true;
    });
}

}  // namespace kel::server
