#include "server/admin/LogInPage.h"

#include <algorithm>

#include "server/admin/Layout.h"
#include "server/admin/Secrets.h"
#include "server/admin/Texts.h"
#include "server/base/Log.h"
#include "server/base/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t LongestName = 200;       // bytes that the audit keeps of a wrong one
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

bool LogInPage::IsRight(const std::string& name, const std::string& password, std::string& account)
{
    const auto found = store.FindAccount(name);
    // An unknown name takes as long as a wrong password.
    const bool isRight =
        password.size() <= LongestPassword && IsPassword(found ? found->hash : nobodysHash, password);
    if (!found || !isRight)
        return false;
    account = found->name;
    return true;
}

Answer LogInPage::LogIn(const Visit& visit)
{
    if (visit.isSingleSignOn)
        throw Fault(404, "there is no such page");
    const std::string name = Shortened(visit.form.Text("name"), LongestName);
    const std::string& next = visit.form.Text("next");
    if (const auto wait = throttle.Wait(name); wait.count() > 0) {
        Answer answer = Render(visit, name, next,
                               Notice("bad", "Too many log-ins failed. Try again in " +
                                                 std::to_string(wait.count()) + " seconds."),
                               429);
        answer.headers.emplace_back("Retry-After", std::to_string(wait.count()));
        return answer;
    }
    std::string account;
    if (!IsRight(name, visit.form.Text("password"), account)) {
        throttle.Failed(name);
        store.Note(name, "log-in failed", "");
        Log(Level::Warning, "log-in-failed", {{"account", name}});
        return Render(visit, name, next, Notice("bad", "Name or password is wrong."), 403);
    }
    throttle.Succeeded(name);
    Answer answer = Redirect(LocalPath(next));
    answer.headers.emplace_back("Set-Cookie", sessions.Begin(account));
    store.Note(account, "logged in", "");
    Log(Level::Info, "logged-in", {{"account", account}});
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
