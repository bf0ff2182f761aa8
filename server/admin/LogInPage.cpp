#include "server/admin/LogInPage.h"

#include <algorithm>

#include "server/admin/Layout.h"
#include "server/admin/Secrets.h"
#include "server/admin/Texts.h"
#include "server/base/Log.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t LongestName = 200;       // bytes of a wrong one that the form has again
constexpr std::size_t LongestPassword = 1000;  // bytes
constexpr std::size_t LongestPath = 1000;

/// A path of this site, or the overview's: never one that leads to another.
std::string LocalPath(const std::string& path)
{
    const bool isLocal =
        path.starts_with('/') && !path.starts_with("//") && path.size() <= LongestPath &&
        std::all_of(path.begin(), path.end(), [](char c) { return c > ' ' && c <= '~' && c != '\\'; });
    return isLocal ? path : "/";
}

Answer Render(const Visit& visit, const std::string& name, const std::string& next, const Html& notice,
              int status)
{
    // The focus is where the next word goes.
    Html::Attributes nameIs{{"autocomplete", "username"}, {"required", ""}};
    Html::Attributes passwordIs{{"autocomplete", "current-password"}, {"required", ""}};
    (name.empty() ? nameIs : passwordIs).emplace_back("autofocus", "");
    const Html fields = Hidden("next", LocalPath(next)) + Field("Name", "name", name, "text", nameIs) +
                        Field("Password", "password", "", "password", passwordIs) +
                        Button("Log in", "primary");
    return Page(
        visit, "Log in",
        notice + Html::Element("form", {{"method", "post"}, {"action", "/login"}, {"class", "card narrow"}},
                               fields),
        status);
}

}  // namespace

LogInPage::LogInPage(Store& store, Sessions& sessions)
    : store(store), sessions(sessions), nobodysHash(HashPassword(RandomText()))
{
}

Answer LogInPage::Show(const Visit& visit) const
{
    if (!visit.login.account.empty() || visit.isSingleSignOn)
        return Redirect("/");
    return Render(visit, "", visit.Query("next"), {}, 200);
}

Answer LogInPage::LogIn(const Visit& visit)
{
    if (visit.isSingleSignOn)
        throw Fault(404, "there is no such page");
    const std::string name = Shortened(visit.form.Text("name"), LongestName);
    const std::string &next = visit.form.Text("next"), &password = visit.form.Text("password");
    const auto found = store.FindAccount(name);
    const std::string browser = found ? Sessions::KnownBrowser(visit.request, *found) : std::string();
    const Throttle::Guest guest{browser.empty() ? name : browser, !browser.empty()};
    if (const auto wait = throttle.Wait(guest); wait.count() > 0) {
        Answer answer = Render(visit, name, next,
                               Notice("bad", "Too many log-ins failed. Try again in " +
                                                 std::to_string(wait.count()) + " seconds."),
                               429);
        answer.headers.emplace_back("Retry-After", std::to_string(wait.count()));
        return answer;
    }
    // An unknown name takes as long as a wrong password.
    const bool isRight =
        password.size() <= LongestPassword && IsPassword(found ? found->hash : nobodysHash, password);
    const auto cookie = found && isRight ? sessions.Begin(*found) : std::nullopt;
    if (!cookie) {
        throttle.Failed(guest);
        // What is no name may be a password in the wrong field.
        const std::string who = found ? found->name : "unknown name";
        store.Note(who, "log-in failed", "");
        Log(Level::Warning, "log-in-failed", {{"account", who}});
        return Render(visit, name, next, Notice("bad", "Name or password is wrong."), 403);
    }
    throttle.Succeeded(guest);
    // The browser is about to lose the cookie of the log-in that it had; nobody else needs that to stay
    // valid.
    if (!visit.login.account.empty())
        sessions.End(visit.login);
    Answer answer = Redirect(LocalPath(next));
    answer.headers.emplace_back("Set-Cookie", *cookie);
    answer.headers.emplace_back("Set-Cookie", Sessions::KnownCookie(*found));
    store.Note(found->name, "logged in", "");
    Log(Level::Info, "logged-in", {{"account", found->name}});
    return answer;
}

Answer LogInPage::LogOut(const Visit& visit)
{
    sessions.End(visit.login);
    store.Note(visit.login.account, "logged out", "");
    Answer answer = Redirect("/login");
    answer.headers.emplace_back("Set-Cookie", Sessions::NoCookie());
    return answer;
}

}  // namespace kel::server
