#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "server/store/Database.h"

namespace kel::server {

/// What an account may do: read everything, or also change and delete.
enum class Role { Reader, Editor };

/// "reader" or "editor".
std::string_view ToString(Role role);

/// The role that ToString gives this text for; nothing for any other text.
std::optional<Role> ParseRole(std::string_view text);

/// A person who may use the administration.
struct Account {
    std::string name;
    std::string hash;  // of the password
    Role role = Role::Reader;
};

enum class LoginKind { Browser, Program };

/// A log-in that has not ended.
struct Login {
    std::string key;  // a hash of the secret that the browser or program holds
    std::string account;
    Role role = Role::Reader;  // the account's, when the log-in is looked up
    std::string formToken;     // which the forms of this log-in contain
    std::int64_t ends = 0;
    LoginKind kind = LoginKind::Browser;
    std::string hash = {};  // the account's hash that the password was compared with; only used by AddLogin
};

/// Accounts of the administration and their log-ins.
class Accounts {
public:
    explicit Accounts(Database& database) : database(database) {}

    /// Adds an account, or gives the one with that name another hash and role, which ends its log-ins. The
    /// audit names `by`.
    void Save(const Account& account, const std::string& by);
    std::optional<Account> Find(const std::string& name);
    /// All accounts, by name.
    std::vector<Account> List();
    /// False when there is no such account.
    bool Remove(const std::string& name, const std::string& by);

    /// Adds a log-in, and deletes those that have ended. False, and nothing is added, when the account has
    /// been removed or has another hash.
    bool AddLogin(const Login& login);
    /// The log-in with that key, if it has not ended and its account still exists.
    std::optional<Login> FindLogin(const std::string& key);
    void EndLogin(const std::string& key);

private:
    Database& database;
};

}  // namespace kel::server
