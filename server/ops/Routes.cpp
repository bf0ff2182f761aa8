#include "server/ops/Routes.h"

#include "server/admin/login/Gate.h"
#include "server/base/Fault.h"
#include "server/ops/Health.h"
#include "server/ops/MetricsPage.h"
#include "server/protocol/Problem.h"

namespace kel::server {

namespace {

// Every control contains it, so it authenticates nobody; it only keeps out stray requests.
constexpr std::string_view ApiKey = "5B3E9A70-2C41-4F8D-A6E2-7D19C04B8E53";

constexpr const char* TestFilePath = "/global/tests/test_2.bin";

// Below it are the requests of pages, whose errors have a text: no control hands it to a script.
constexpr std::string_view PagesPath = "/v1/";
constexpr const char *ProgramPath = "/v1/check/*/*", *VerdictPath = "/v1/verdicts/*/*";

bool IsForPages(const std::optional<Target>& target)
{
    return target && target->path.starts_with(PagesPath);
}

void CheckKey(const Target& target)
{
    if (target.Only("apikey") != ApiKey)
        throw Fault(403, "the key is not known");
}

/// The referrer of a group list. The control puts it into the query unescaped, so that one with an ampersand
/// looks like two parameters: any parameter that is neither the referrer nor the key is part of a referrer
/// that cannot exist.
std::string ReadReferrer(const Target& target)
{
    for (const Target::Parameter& parameter : target.query) {
        if (parameter.name != "refid" && parameter.name != "apikey")
            throw Fault(404, "the referrer is not known");
    }
    return target.Only("refid").value_or("");
}

}  // namespace

Router PublicRoutes(Service& service, Checks& checks, Metrics& metrics)
{
    Router router(metrics.publicEndpoint);
    router.Add("GET", "/Data/Service.svc/Group/list", [&](const Call& call) {
        CheckKey(call.target);
        return service.GroupList(ReadReferrer(call.target));
    });
    router.Add("POST", "/Data/Service.svc/upload", [&](const Call& call) {
        CheckKey(call.target);
        return service.Upload(call.request.body);
    });
    for (const char* path : {"/SystemInformation/", "/SystemInformation"})
        router.Add("POST", path,
                   [&](const Call& call) { return service.SystemInformation(call.request.body); });
    router.Add("GET", "/service/Title/*", [&](const Call& call) { return service.Title(call.subject); });
    router.Add("POST", "/service/Analysis/*",
               [&](const Call& call) { return service.Analysis(call.subject, call.request.body); });
    router.Add("GET", TestFilePath, [&](const Call&) { return service.TestFile(); });
    for (const char* method : {"GET", "HEAD"})
        router.Add(method, ProgramPath,
                   [&](const Call& call) { return checks.Program(call.subject, call.detail, call.request); });
    router.Add("GET", VerdictPath,
               [&](const Call& call) { return checks.Verdict(call.subject, call.detail, call.request); });
    router.Add("OPTIONS", VerdictPath,
               [&](const Call& call) { return checks.Preflight(call.subject, call.request); });
    router.SetFailure([](const Request& request, int status) {
        return IsForPages(Target::Read(request.target)) ? Problem(status) : Answer::Empty(status);
    });
    return router;
}

Router AdminRoutes(Database& database, Metrics& metrics, const AdminSettings& settings)
{
    Router router(metrics.adminEndpoint);
    const auto add = [&](const char* path, const std::function<Answer()>& answer) {
        router.Add("GET", path, [&settings, answer](const Call& call) {
            CheckHost(call.request, settings);
            return answer();
        });
    };
    // Shows only that the process answers: a restart does not repair a database.
    add("/healthz", [] { return Answer::Of("text/plain; charset=utf-8", "ok\n"); });
    add("/readyz", [&] { return Readiness(database); });
    add("/metrics", [&] { return MetricsPage(metrics, database); });
    return router;
}

Place PublicPlace(const Request& request)
{
    if (request.method == "POST")
        return request.body.size() > Limits::SmallBody ? Place::Bulk : Place::Workers;
    const auto target = Target::Read(request.target);
    if (target && target->path == TestFilePath)
        return Place::Network;
    return IsForPages(target) ? Place::Workers : Place::Readers;
}

Place AdminPlace(const Request& request)
{
    if (request.target == "/healthz" || request.target == "/metrics")
        return Place::Network;
    return request.target == "/readyz" ? Place::Readers : Place::Operators;
}

}  // namespace kel::server
