#include "server/admin/Site.h"

#include <fmt/format.h>

#include "server/admin/Api.h"
#include "server/admin/Layout.h"
#include "server/admin/kit/Texts.h"
#include "server/admin/login/Gate.h"
#include "server/base/Log.h"
#include "server/http/Limits.h"
#include "verdict/Requirements.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxStrangersForm = 16 * Limits::Kilobyte;
constexpr std::size_t MaxNext = 1000;  // bytes of an address to which a log-in returns

/// Answers a request without a log-in: a browser is sent to the log-in page, which leads back; a form and a
/// program get an error.
Answer Refuse(const AdminRequest& request, bool isProgram)
{
    if (request.isSingleSignOn)
        throw Fault(403, "The account that the proxy names does not exist.");
    if (isProgram)
        throw Fault(401, "You are not logged in, or your log-in has ended.");
    if (request.http.method != "GET")
        throw Fault(
            403,
            "The log-in has ended; nothing was changed. Log in in another tab, go back here, and send "
            "the form once more.");
    const bool isLong = request.http.target.size() > MaxNext;
    return Redirect(isLong ? "/login" : "/login?next=" + UrlEncode(request.http.target));
}

Answer NotAllowed(const AdminRequest& request, bool isProgram, const std::string& allowed)
{
    const std::string reason = fmt::format("This page accepts only {}.", allowed);
    Answer answer = isProgram ? ProgramError(405, reason) : ErrorPage(request, 405, reason);
    answer.headers.emplace_back("Allow", allowed);
    return answer;
}

/// Throws Fault 413 or 400.
Form ReadForm(const Request& request, bool isOfStranger)
{
    if (isOfStranger && request.body.size() > MaxStrangersForm)
        throw Fault(413, "The form is too long.");
    const std::string* type = request.Header("Content-Type");
    auto form = Form::Read(request.body, type ? *type : std::string());
    if (!form)
        throw Fault(400, "The form cannot be read.");
    if (form->Text("text").size() > Requirements::MaxFile)
        throw Fault(
            413,
            "A draft has 1 MB at most; nothing was saved. Go back in the browser, where the text still is, "
            "and shorten it.");
    return *form;
}

Answer FaultAnswer(const AdminRequest& request, bool isProgram, int status, const std::string& reason)
{
    Log(status < 500 ? Level::Warning : Level::Error, status == 500 ? "failed" : "refused",
        {{"status", std::to_string(status)}, {"target", request.http.target}, {"reason", reason}});
    // The reason for a failure goes only to the log.
    const std::string shown = status < 500    ? reason
                              : status == 500 ? "The service failed. Its log has the reason."
                              : status == NoRoom::Code
                                  ? "There is no room left on the database's disk."
                                  : "The database did not answer. Try again in a moment.";
    return isProgram ? ProgramError(status, shown) : ErrorPage(request, status, shown);
}

}  // namespace

Site::Site(Database& database, AdminSettings settings)
    : database(database), settings(std::move(settings)), sessions(database, this->settings)
{
}

void Site::AddTo(Router& router)
{
    for (const Route& route : Routes)
        router.Add(route.method, route.pattern,
                   [this, &route](const Call& call) { return Handle(call, &route, ""); });
    router.SetFallback(
        [this](const Call& call, const std::string& allowed) { return Handle(call, nullptr, allowed); });
}

/// Without a route: 405 with the allowed methods, or 404 when there are none.
Answer Site::Handle(const Call& call, const Route* route, const std::string& allowed)
{
    AdminRequest request{call.request, call.target, call.subject,         database,
                         sessions,     throttle,    settings.singleSignOn};
    const bool isProgram = call.target.path.starts_with("/api/");
    Answer answer;
    try {
        answer = Respond(request, route, allowed, isProgram);
    } catch (const Fault& fault) {
        answer = FaultAnswer(request, isProgram, fault.Status(), fault.what());
    } catch (const std::exception& error) {
        answer = FaultAnswer(request, isProgram, 500, error.what());
    }
    AddSafety(answer);
    return answer;
}

Answer Site::Respond(AdminRequest& request, const Route* route, const std::string& allowed, bool isProgram)
{
    CheckHost(request.http, settings);
    const auto bearer = isProgram ? sessions.FindBearer(request.http) : std::nullopt;
    if (const auto login = bearer ? bearer : sessions.Find(request.http))
        request.login = *login;
    if (route)
        return Respond(request, *route, isProgram, bearer.has_value());
    if (allowed.empty())
        throw Fault(404, "There is no such page.");
    return NotAllowed(request, isProgram, allowed);
}

Answer Site::Respond(AdminRequest& request, const Route& route, bool isProgram, bool hasToken)
{
    const bool isOpen = route.access == Access::Open, isChange = request.http.method != "GET";
    if (isChange && !hasToken)
        CheckOrigin(request.http, settings);
    if (!isOpen && request.login.account.empty())
        return Refuse(request, isProgram);
    // A body is not even read before these checks.
    if (isChange && !isProgram)
        request.form = ReadForm(request.http, isOpen);
    if (isChange && !hasToken && !isOpen) {
        const std::string* header = request.http.Header("X-Form-Token");
        CheckToken(request, isProgram ? (header ? *header : std::string()) : request.form.Text("token"));
    }
    if (route.access == Access::Editor && !request.IsEditor())
        throw Fault(403, "Only editors may do that.");
    // If a parameter were ignored, the program would take the answer for the one that it asked for.
    if (auto refusal = isProgram ? RefuseParameters(request.target, route.parameters) : std::nullopt)
        return *std::move(refusal);
    return route.page(request);
}

}  // namespace kel::server
