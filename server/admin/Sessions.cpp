#include "server/admin/Sessions.h"

#include "server/admin/Html.h"
#include "server/admin/Secrets.h"
#include "server/base/Text.h"

namespace kel::server {

namespace {

// The browser keeps a cookie of this prefix for this host alone, and sends it where nobody listens.
constexpr std::string_view CookieName = "__Host-kel";
constexpr std::string_view CookieRules = "; Path=/; Secure; HttpOnly; SameSite=Lax";
constexpr std::int64_t Hour = 3'600'000;  // milliseconds

std::string CookieOf(const Request& request)
{
    const std::string* header = request.Header("Cookie");
    for (std::string_view rest = header ? *header : std::string_view(); !rest.empty();) {
        const std::string_view cookie = rest.substr(0, rest.find(';'));
        rest.remove_prefix(std::min(cookie.size() + 1, rest.size()));
        const std::size_t equals = cookie.find('=');
        if (Trim(cookie.substr(0, equals)) == CookieName && equals != std::string_view::npos)
            return std::string(Trim(cookie.substr(equals + 1)));
    }
    return {};
}

std::string BeginLogin(Store& store, const std::string& account, std::int64_t duration)
{
    std::string secret = RandomText();
    store.Keep(Login{HashOf(secret), account, Role::Reader, RandomText(), Now() + duration});
    return secret;
}

}  // namespace

Sessions::Sessions(Store& store, const AdminSettings& settings)
    : store(store), settings(settings), key(RandomText())
{
}

std::string Sessions::Begin(const std::string& account)
{
    const std::string secret = BeginLogin(store, account, settings.sessionHours * Hour);
    return std::string(CookieName).append("=").append(secret).append(CookieRules);
}

void Sessions::End(const Login& login)
{
    store.EndLogin(login.key);
}

std::string Sessions::NoCookie()
{
    return std::string(CookieName).append("=; Max-Age=0").append(CookieRules);
}

std::optional<Login> Sessions::Find(const Request& request)
{
    if (!settings.singleSignOn) {
        const std::string secret = CookieOf(request);
        return secret.empty() ? std::nullopt : store.FindLogin(HashOf(secret));
    }
    const std::string* name = request.Header("X-Remote-User");
    const auto account = name && *name == Clean(*name) ? store.FindAccount(*name) : std::nullopt;
    if (!account)
        return std::nullopt;
    return Login{{}, account->name, account->role, HashOf(account->name, key), 0};
}

std::optional<Login> Sessions::FindBearer(const Request& request)
{
    constexpr std::string_view Scheme = "bearer ";
    const std::string* header = request.Header("Authorization");
    if (!header || Lower(header->substr(0, Scheme.size())) != Scheme)
        return std::nullopt;
    return store.FindLogin(HashOf(Trim(std::string_view(*header).substr(Scheme.size()))));
}

std::string MakeToken(Store& store, const std::string& account, int days)
{
    return BeginLogin(store, account, std::int64_t{days} * 24 * Hour);
}

}  // namespace kel::server
