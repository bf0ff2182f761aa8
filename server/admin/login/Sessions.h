#pragma once

#include <optional>
#include <string>

#include "server/admin/login/Settings.h"
#include "server/base/Exchange.h"
#include "server/store/Accounts.h"

namespace kel::server {

/// Begins, finds and ends log-ins. For any thread.
class Sessions {
public:
    Sessions(Database& database, const AdminSettings& settings);

    /// Begins a log-in, and returns the value of the Set-Cookie header that carries it. Nothing when the
    /// account's password has changed meanwhile.
    std::optional<std::string> Begin(const Account& account);
    void End(const Login& login);
    /// The value of the Set-Cookie header that removes the cookie.
    static std::string ExpiredCookie();

    /// The value of the Set-Cookie header that later identifies the browser as one in which that account has
    /// logged in. It grants no access, and becomes invalid when the password changes.
    static std::string KnownCookie(const Account& account);
    /// The random text of such a browser; empty when the request comes from another one.
    static std::string KnownBrowser(const Request& request, const Account& account);

    /// The log-in of a request by its cookie, or with single sign-on by the proxy's header. Nothing when
    /// there is none, it has ended, or the account is gone.
    std::optional<Login> Find(const Request& request);
    /// The log-in of a request by its token (Authorization: Bearer).
    std::optional<Login> FindBearer(const Request& request);

    /// Whether that is the account's password. Without an account it is false, and takes as long.
    bool IsPassword(const std::optional<Account>& account, std::string_view password) const;

private:
    Database& database;
    AdminSettings settings;
    std::string key;           // makes the form tokens of the accounts that the proxy names
    std::string unknownsHash;  // used for an account that does not exist
};

/// Makes a token for programs that lasts the given number of days. Throws Fault 409 when the account's
/// password has changed meanwhile.
std::string MakeToken(Database& database, const Account& account, int days);

}  // namespace kel::server
