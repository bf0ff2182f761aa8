
#include <fmt/format.h>
#include <algorithm>

#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/base/Log.h"
#include "server/store/Audit.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxRepeatedBytes = 200;  // bytes of a wrong name that the form repeats
constexpr std::size_t MaxPathBytes = 1000;

/// The path if it is on this site, else the overview's: never one that leads to another site.
std::string LocalPath(const std::string& path)
{
    const bool isLocal =
        path.starts_with('/') && !path.starts_with("//") && path.size() <= MaxPathBytes &&
        std::all_of(path.begin(), path.end(), [](char c) { return c > ' ' && c <= '~' && c != '\\'; });
    return isLocal ? path : "/";
}

Answer Render(const AdminRequest& request, const std::string& name, const std::string& next,
              const Html& notice, int status)
{
    // The focus is on the first empty field.
    Html::Attributes nameIs{{"autocomplete", "username"}, {"required", ""}};
    Html::Attributes passwordIs{{"autocomplete", "current-password"}, {"required", ""}};
    (name.empty() ? nameIs : passwordIs).emplace_back("autofocus", "");
    const Html fields = Hidden("next", LocalPath(next)) + Field("Name", "name", name, "text", nameIs) +
                        Field("Password", "password", "", "password", passwordIs) +
                        Button("Log in", "primary");
    return Page(
        request, "Log in",
        notice + Html::Element("form", {{"method", "post"}, {"action", "/login"}, {"class", "card narrow"}},
                               fields),
        status);
}

}  // namespace

Answer ShowLogIn(const AdminRequest& request)
{
    if (!request.login.account.empty() || request.isSingleSignOn)
        return Redirect("/");
    return Render(request, "", request.Query("next"), {}, 200);
}

Answer LogIn(const AdminRequest& request)
{
    if (request.isSingleSignOn)
        throw Fault(404, "There is no such page.");
    const std::string name = Shortened(request.form.Text("name"), MaxRepeatedBytes);
    const std::string &next = request.form.Text("next"), &password = request.form.Text("password");
    const auto found = Accounts(request.database).Find(name);
    const std::string browser = found ? Sessions::KnownBrowser(request.http, *found) : std::string();
    const Throttle::Guest guest{browser.empty() ? name : browser, !browser.empty()};
    if (const auto wait = request.throttle.Wait(guest); wait.count() > 0) {
        Answer answer = Render(
            request, name, next,
            Notice("bad", fmt::format("Too many log-ins failed. Try again in {} seconds.", wait.count())),
            429);
        answer.headers.emplace_back("Retry-After", std::to_string(wait.count()));
        return answer;
    }
    const auto cookie =
        request.sessions.IsPassword(found, password) ? request.sessions.Begin(*found) : std::nullopt;
    if (!cookie) {
        request.throttle.Failed(guest);
        // An unknown name is not stored, as it may be a password in the wrong field.
        const std::string user = found ? found->name : "unknown name";
        Audit(request.database).Add(user, "log-in failed", "");
        Log(Level::Warning, "log-in-failed", {{"account", user}});
        return Render(request, name, next, Notice("bad", "Name or password is wrong."), 403);
    }
    request.throttle.Succeeded(guest);
    // The browser's previous log-in ends: its cookie is about to be replaced, and nothing else uses it.
    if (!request.login.account.empty())
        request.sessions.End(request.login);
    Answer answer = Redirect(LocalPath(next));
    answer.headers.emplace_back("Set-Cookie", *cookie);
    answer.headers.emplace_back("Set-Cookie", Sessions::KnownCookie(*found));
    Audit(request.database).Add(found->name, "logged in", "");
    Log(Level::Info, "logged-in", {{"account", found->name}});
    return answer;
}

Answer LogOut(const AdminRequest& request)
{
    request.sessions.End(request.login);
    Audit(request.database).Add(request.login.account, "logged out", "");
    Answer answer = Redirect("/login");
    answer.headers.emplace_back("Set-Cookie", Sessions::ExpiredCookie());
    return answer;
}

}  // namespace kel::server
