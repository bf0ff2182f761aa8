#include "server/admin/login/Sessions.h"

#include "server/admin/kit/Html.h"
#include "server/admin/login/Secrets.h"
#include "server/base/Fault.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

// The browser keeps a cookie with this prefix for this host only, and sends it only where it cannot be
// overheard.
constexpr std::string_view CookieName = "__Host-kel", KnownName = "__Host-kel-known";
constexpr std::string_view CookieRules = "; Path=/; Secure; HttpOnly; SameSite=Lax";
constexpr std::int64_t Hour = 3'600'000;  // milliseconds

std::string ReadCookie(const Request& request, std::string_view name)
{
    const std::string* header = request.Header("Cookie");
    for (std::string_view rest = header ? *header : std::string_view(); !rest.empty();) {
        const std::string_view cookie = rest.substr(0, rest.find(';'));
        rest.remove_prefix(std::min(cookie.size() + 1, rest.size()));
        const std::size_t equals = cookie.find('=');
        if (Trim(cookie.substr(0, equals)) == name && equals != std::string_view::npos)
            return std::string(Trim(cookie.substr(equals + 1)));
    }
    return {};
}

/// Proves that this browser's random text was given to the account with its present password.
std::string TrustedBrowserMark(const std::string& browser, const Account& account)
{
    return HashOf(browser, HashOf(account.hash));  // the account's hash is salted
}

/// Adds a log-in and returns the secret that its holder sends; empty when the account's password has changed
/// meanwhile.
std::string BeginLogin(Database& database, const Account& account, LoginKind kind, std::int64_t duration)
{
    std::string secret = RandomText();
    const bool isKept = Accounts(database).AddLogin(Login{
        HashOf(secret), account.name, account.role, RandomText(), Now() + duration, kind, account.hash});
    return isKept ? secret : std::string();
}

/// The log-in that has this secret, if it is of this kind.
std::optional<Login> FindKind(Database& database, std::string_view secret, LoginKind kind)
{
    auto login = secret.empty() ? std::nullopt : Accounts(database).FindLogin(HashOf(secret));
    return login && login->kind == kind ? login : std::nullopt;
}

}  // namespace

Sessions::Sessions(Database& database, const AdminSettings& settings)
    : database(database), settings(settings), key(RandomText()), unknownsHash(HashPassword(RandomText()))
{
}

bool Sessions::IsPassword(const std::optional<Account>& account, std::string_view password) const
{
    if (password.size() > MaxPasswordBytes)
        return false;
    return server::IsPassword(account ? account->hash : unknownsHash, password) && account;
}

std::optional<std::string> Sessions::Begin(const Account& account)
{
    const std::string secret =
        BeginLogin(database, account, LoginKind::Browser, settings.sessionHours * Hour);
    if (secret.empty())
        return std::nullopt;
    return std::string(CookieName).append("=").append(secret).append(CookieRules);
}

void Sessions::End(const Login& login)
{
    Accounts(database).EndLogin(login.key);
}

std::string Sessions::ExpiredCookie()
{
    return std::string(CookieName).append("=; Max-Age=0").append(CookieRules);
}

std::string Sessions::KnownCookie(const Account& account)
{
    const std::string browser = RandomText();
    return std::string(KnownName)
        .append("=")
        .append(browser + "." + TrustedBrowserMark(browser, account))
        .append("; Max-Age=31536000")
        .append(CookieRules);
}

std::string Sessions::KnownBrowser(const Request& request, const Account& account)
{
    const std::string cookie = ReadCookie(request, KnownName);
    const std::size_t dot = std::min(cookie.find('.'), cookie.size());
    std::string browser = cookie.substr(0, dot);
    const bool isKnown = !browser.empty() &&
                         EqualsInConstantTime(cookie.substr(dot), "." + TrustedBrowserMark(browser, account));
    return isKnown ? browser : std::string();
}

std::optional<Login> Sessions::Find(const Request& request)
{
    if (!settings.singleSignOn)
        return FindKind(database, ReadCookie(request, CookieName), LoginKind::Browser);
    const std::string* name = request.Header("X-Remote-User");
    const auto account = name && *name == Clean(*name) ? Accounts(database).Find(*name) : std::nullopt;
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
    return FindKind(database, Trim(std::string_view(*header).substr(Scheme.size())), LoginKind::Program);
}

std::string MakeToken(Database& database, const Account& account, int days)
{
    std::string token = BeginLogin(database, account, LoginKind::Program, std::int64_t{days} * 24 * Hour);
    if (token.empty())
        throw Fault(409, "the password of the account has changed meanwhile; try again");
    return token;
}

}  // namespace kel::server
