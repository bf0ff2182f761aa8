#pragma once

#include <optional>
#include <string>

#include "server/admin/Settings.h"
#include "server/base/Exchange.h"
#include "server/store/Store.h"

namespace kel::server {

/// Who sends a request, and log-ins as they begin and end. For any thread.
class Sessions {
public:
    Sessions(Store& store, const AdminSettings& settings);

    /// Begins a log-in; the value of the Set-Cookie header that carries it.
    std::string Begin(const std::string& account);
    void End(const Login& login);
    /// The value of the Set-Cookie header that takes the cookie away.
    static std::string NoCookie();

    /// The log-in of a request by its cookie, or with single sign-on by the proxy's word. Nothing when there
    /// is none, it has ended, or the account is gone.
    std::optional<Login> Find(const Request& request);
    /// The log-in of a request by its token (Authorization: Bearer).
    std::optional<Login> FindBearer(const Request& request);

    bool IsSingleSignOn() const { return settings.singleSignOn; }

private:
    Store& store;
    AdminSettings settings;
    std::string key;  // makes the form tokens of those whom the proxy names
};

/// Makes a token for programs that lasts so many days, of an account that exists.
std::string MakeToken(Store& store, const std::string& account, int days);

}  // namespace kel::server
