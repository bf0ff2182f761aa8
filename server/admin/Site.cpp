#include "server/admin/Site.h"

#include <algorithm>

#include "server/admin/Api.h"
#include "server/admin/AuditPage.h"
#include "server/admin/EditorPage.h"
#include "server/admin/Gate.h"
#include "server/admin/Layout.h"
#include "server/admin/LogInPage.h"
#include "server/admin/OverviewPage.h"
#include "server/admin/ProductPage.h"
#include "server/admin/ReportPage.h"
#include "server/admin/ReportsPage.h"
#include "server/admin/RequirementsPage.h"
#include "server/admin/Sessions.h"
#include "server/admin/Texts.h"
#include "server/admin/Visit.h"
#include "server/base/Log.h"
#include "server/http/Limits.h"
#include "verdict/Requirements.h"

namespace kel::server {

namespace {

constexpr std::size_t LongestStrangersForm = 16 * Limits::Kilobyte;
constexpr std::size_t LongestNext = 1000;  // bytes of an address that a log-in leads back to

enum class Access { Open, Reader, Editor };

struct Route {
    std::string_view method, path;  // a star stands for one part of the path
    Access access;
    Action action;
    std::vector<std::string_view> parameters = {};  // that a program may put into the query

    /// What the path has in the place of the star; nothing when it is another path.
    std::optional<std::string> SubjectIn(std::string_view asked) const
    {
        const std::size_t star = path.find('*');
        if (star == std::string_view::npos)
            return asked == path ? std::optional<std::string>("") : std::nullopt;
        const std::string_view before = path.substr(0, star), after = path.substr(star + 1);
        if (asked.size() <= before.size() + after.size() || !asked.starts_with(before) ||
            !asked.ends_with(after))
            return std::nullopt;
        const std::string_view subject = asked.substr(star, asked.size() - before.size() - after.size());
        return subject.find('/') == std::string_view::npos ? std::optional(std::string(subject))
                                                           : std::nullopt;
    }
};

}  // namespace

/// The pages, and the paths that lead to them.
class Site::Parts {
public:
    Parts(Store& store, const AdminSettings& settings)
        : sessions(store, settings),
          logIn(store, sessions),
          overview(store),
          reports(store),
          report(store),
          product(store),
          requirements(store),
          editor(store, requirements),
          audit(store),
          api(store)
    {
        const auto style = [](const Visit&) { return Answer::Of("text/css; charset=utf-8", AdminStyle); };
        Add("GET", "/style.css", Access::Open, style);
        Add("GET", "/login", Access::Open, logIn, &LogInPage::Show);
        Add("POST", "/login", Access::Open, logIn, &LogInPage::LogIn);
        Add("POST", "/logout", Access::Reader, logIn, &LogInPage::LogOut);
        Add("GET", "/", Access::Reader, overview, &OverviewPage::Show);
        Add("GET", "/values", Access::Reader, ShowValues);
        Add("GET", "/audit", Access::Editor, audit, &AuditPage::Show);
        Add("GET", "/reports", Access::Reader, reports, &ReportsPage::Show);
        Add("GET", "/reports/*", Access::Reader, report, &ReportPage::Show);
        Add("GET", "/reports/*/delete", Access::Editor, report, &ReportPage::AskToDelete);
        Add("POST", "/reports/*/delete", Access::Editor, report, &ReportPage::Delete);
        Add("GET", "/products/*", Access::Reader, product, &ProductPage::Show);
        Add("GET", "/products/*/version", Access::Reader, requirements, &RequirementsPage::ShowVersion);
        Add("GET", "/products/*/requirements", Access::Reader, requirements, &RequirementsPage::Show);
        Add("GET", "/new", Access::Editor, requirements, &RequirementsPage::Begin);
        Add("POST", "/products/*/requirements", Access::Editor, editor, &EditorPage::Act);
        Add("POST", "/products/*/publish", Access::Editor, editor, &EditorPage::Publish);
        Add("POST", "/products/*/drop", Access::Editor, editor, &EditorPage::Drop);
        Add("GET", "/api/v1/reports", Access::Reader, api, &Api::Reports, {"after", "count", "format"});
        Add("GET", "/api/v1/referrers", Access::Reader, api, &Api::Referrers);
        Add("GET", "/api/v1/referrers/*/draft", Access::Reader, api, &Api::ReadDraft);
        Add("PUT", "/api/v1/referrers/*/draft", Access::Editor, api, &Api::WriteDraft);
        Add("POST", "/api/v1/referrers/*/publish", Access::Editor, api, &Api::Publish);
    }

    Sessions sessions;
    std::vector<Route> routes;

private:
    void Add(std::string_view method, std::string_view path, Access access, Action action)
    {
        routes.push_back({method, path, access, std::move(action)});
    }

    template <typename Part, typename Member>
    void Add(std::string_view method, std::string_view path, Access access, Part& part, Member member,
             std::vector<std::string_view> parameters = {})
    {
        Add(method, path, access, [&part, member](const Visit& visit) { return (part.*member)(visit); });
        routes.back().parameters = std::move(parameters);
    }

    LogInPage logIn;
    OverviewPage overview;
    ReportsPage reports;
    ReportPage report;
    ProductPage product;
    RequirementsPage requirements;
    EditorPage editor;
    AuditPage audit;
    Api api;
};

namespace {

/// A request without a log-in: a browser is sent to log in and comes back, a form and a program are told.
Answer Refuse(const Visit& visit, bool isProgram)
{
    if (visit.isSingleSignOn)
        throw Fault(403, "The proxy names no account that exists here.");
    if (isProgram)
        throw Fault(401, "There is no log-in, or it has ended.");
    if (visit.request.method != "GET")
        throw Fault(
            403,
            "The log-in has ended; nothing was changed. Log in in another tab, go back here, and send "
            "the form once more.");
    const bool isLong = visit.request.target.size() > LongestNext;
    return Redirect(isLong ? "/login" : "/login?next=" + UrlEncode(visit.request.target));
}

Answer NotAllowed(const Visit& visit, bool isProgram, const std::string& allowed)
{
    const std::string reason = "This page answers to " + allowed + " alone.";
    Answer answer = isProgram ? ProgramError(405, reason) : ErrorPage(visit, 405, reason);
    answer.headers.emplace_back("Allow", allowed);
    return answer;
}

/// Throws Fault 413 or 400.
Form FormOf(const Request& request, bool isOfStranger)
{
    if (isOfStranger && request.body.size() > LongestStrangersForm)
        throw Fault(413, "The form is too long.");
    auto form = Form::Read(request.body);
    if (!form)
        throw Fault(400, "The form cannot be read.");
    if (form->Text("text").size() > Requirements::MaxFile)
        throw Fault(
            413,
            "A draft has 1 MB at most; nothing was saved. Go back in the browser, where the text still is, "
            "and shorten it.");
    return *form;
}

Answer FaultAnswer(const Visit& visit, bool isProgram, int status, const std::string& reason)
{
    Log(status < 500 ? Level::Warning : Level::Error, status == 500 ? "failed" : "refused",
        {{"status", std::to_string(status)}, {"target", visit.request.target}, {"reason", reason}});
    // The reason of a failure is for the log alone.
    const std::string shown = status < 500    ? reason
                              : status == 500 ? "The service failed. Its log has the reason."
                              : status == NoRoom::Code
                                  ? "There is no room left on the database's disk."
                                  : "The database did not answer. Try again in a moment.";
    return isProgram ? ProgramError(status, shown) : ErrorPage(visit, status, shown);
}

}  // namespace

Site::Site(Store& store, AdminSettings settings)
    : settings(std::move(settings)), parts(std::make_unique<Parts>(store, this->settings))
{
}

Site::~Site() = default;

void Site::AddTo(Router& router)
{
    // All that HTTP has: those that no page answers to are told which it does.
    for (const char* method : {"GET", "POST", "PUT", "HEAD", "DELETE", "PATCH", "OPTIONS"})
        router.Add(method, "/*", [this](const Call& call) { return Handle(call); });
}

Answer Site::Handle(const Call& call)
{
    Visit visit{call.request, call.target, {}};
    const bool isProgram = call.target.path.starts_with("/api/");
    Answer answer;
    try {
        answer = Find(visit, isProgram);
    } catch (const Fault& fault) {
        answer = FaultAnswer(visit, isProgram, fault.Status(), fault.what());
    } catch (const std::exception& error) {
        answer = FaultAnswer(visit, isProgram, 500, error.what());
    }
    AddSafety(answer);
    return answer;
}

Answer Site::Find(Visit& visit, bool isProgram)
{
    CheckHost(visit.request, settings);
    const Route* route = nullptr;
    std::string allowed;
    for (const Route& row : parts->routes) {
        const auto subject = row.SubjectIn(visit.target.path);
        if (!subject)
            continue;
        allowed.append(allowed.empty() ? "" : ", ").append(row.method);
        if (row.method != visit.request.method)
            continue;
        route = &row;
        visit.subject = *subject;
        break;
    }
    visit.isSingleSignOn = settings.singleSignOn;
    const auto bearer = isProgram ? parts->sessions.FindBearer(visit.request) : std::nullopt;
    if (const auto login = bearer ? bearer : parts->sessions.Find(visit.request))
        visit.login = *login;
    if (!route && !allowed.empty())
        return NotAllowed(visit, isProgram, allowed);
    if (!route)
        throw Fault(404, "There is no such page.");
    const bool isOpen = route->access == Access::Open, isChange = visit.request.method != "GET";
    if (isChange && !bearer)
        CheckOrigin(visit.request, settings);
    if (!isOpen && visit.login.account.empty())
        return Refuse(visit, isProgram);
    // What a stranger sends is not even read before all that.
    if (isChange && !isProgram)
        visit.form = FormOf(visit.request, isOpen);
    if (isChange && !bearer && !isOpen) {
        const std::string* header = visit.request.Header("X-Form-Token");
        CheckToken(visit, isProgram ? (header ? *header : std::string()) : visit.form.Text("token"));
    }
    if (route->access == Access::Editor && !visit.IsEditor())
        throw Fault(403, "Only editors may do that.");
    // A program whose parameter was ignored would take the answer for the one that it asked for.
    if (auto refusal = isProgram ? RefuseParameters(visit.target, route->parameters) : std::nullopt)
        return *std::move(refusal);
    return route->action(visit);
}

}  // namespace kel::server
