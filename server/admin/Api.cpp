#include "server/admin/Api.h"

#include <fmt/format.h>
#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "server/admin/Drafts.h"
#include "server/admin/FailingLine.h"
#include "server/admin/Pages.h"
#include "server/admin/ReportExport.h"
#include "server/admin/ReportQuery.h"
#include "server/admin/ReportSearch.h"
#include "server/admin/kit/Texts.h"
#include "server/base/Log.h"
#include "server/http/Limits.h"
#include "server/store/DayCounts.h"
#include "server/store/Reports.h"
#include "server/store/RequirementSets.h"
#include "server/store/Verdicts.h"
#include "verdict/RequirementsCheck.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

using nlohmann::ordered_json;

constexpr int UsualReports = 100, MaxPageReports = 1000;
constexpr std::size_t MaxAnswerBytes = 4 * Limits::Megabyte;  // the next answer has the rest
constexpr std::size_t MaxParameterBytes = 100;                // of a parameter that an error repeats

Answer JsonAnswer(const ordered_json& content, int status = 200)
{
    Answer answer =
        Answer::Of("application/json", content.dump(-1, ' ', false, ordered_json::error_handler_t::replace));
    answer.status = status;
    return answer;
}

/// The draft's revision that the request is for: If-Match: "3".
int ReadRevision(const AdminRequest& request)
{
    const std::string* match = request.http.Header("If-Match");
    if (!match)
        throw Fault(428, "If-Match has to name the revision of the draft.");
    const bool isQuoted = match->size() > 2 && match->front() == '"' && match->back() == '"';
    const std::int64_t revision =
        isQuoted ? WholeNumber(std::string_view(*match).substr(1, match->size() - 2)) : -1;
    return revision > 0 && revision <= INT32_MAX ? static_cast<int>(revision) : -1;
}

Fault Stale()
{
    return {412, "The draft has another revision."};
}

}  // namespace

Answer ProgramError(int status, const std::string& reason)
{
    Answer answer = JsonAnswer({{"error", reason}}, status);
    if (status == 401)
        answer.headers.emplace_back("WWW-Authenticate", "Bearer");
    return answer;
}

std::optional<Answer> RefuseParameters(const Target& target, std::span<const std::string_view> allowed)
{
    std::set<std::string> seen;
    for (const Target::Parameter& parameter : target.query) {
        const bool isKnown = std::find(allowed.begin(), allowed.end(), parameter.name) != allowed.end();
        if (isKnown && seen.insert(parameter.name).second)
            continue;
        const std::string name = Shortened(Clean(parameter.name), MaxParameterBytes);
        const std::string reason =
            fmt::format("The parameter '{}' is {}.", name, isKnown ? "repeated" : "not known");
        Log(Level::Warning, "refused", {{"status", "400"}, {"reason", reason}});
        return JsonAnswer({{"error", reason}, {"parameter", name}, {"allowed", allowed}}, 400);
    }
    return std::nullopt;
}

Answer ListReports(const AdminRequest& request)
{
    const std::string after = request.Query("after"), count = request.Query("count"),
                      format = request.Query("format"), all = request.Query("all");
    const ReportQuery query = ReportQuery::Read(request);
    if (!query.problem.empty())
        throw Fault(400, query.problem);
    ReportFilter filter = query.Filter();
    filter.afterId = after.empty() ? 0 : WholeNumber(after);
    filter.count = count.empty()
                       ? UsualReports
                       : static_cast<int>(std::min<std::int64_t>(WholeNumber(count), MaxPageReports));
    if (filter.afterId < 0 || filter.count < 1 || (!format.empty() && format != "csv" && format != "json"))
        throw Fault(400, "'after' and 'count' are whole numbers, and 'format' is json or csv.");
    if (!all.empty() && (all != "1" || !count.empty()))
        throw Fault(400, "'all' has to be 1, and has no 'count' beside it.");
    if (!query.failing.empty())
        filter.failing = FindLines(request.database, query.referrer, query.failing);
    const ReportFormat as = format == "csv" ? ReportFormat::Csv : ReportFormat::Json;
    if (!all.empty())
        return AllReports(request.database, query, filter, as);
    ReportWriter writer(as);
    std::string text = writer.Head();
    const std::size_t head = text.size();
    const FoundReports found = SearchReports(request.database, query, filter);
    std::int64_t last = !found.lines.empty() ? found.lines.back().id : filter.afterId;
    last = std::max(last, found.reached);
    writer.ForEach(request.database, found.lines, [&](std::int64_t report, const std::string& more) {
        if (text.size() > head && text.size() + more.size() > MaxAnswerBytes) {
            last = report - 1;
            return false;
        }
        text += more;
        return true;
    });
    Answer answer = Answer::Of(std::string(writer.ContentType()), text + writer.End(last));
    answer.headers.emplace_back("X-Last", std::to_string(last));  // a table has no other place for it
    return answer;
}

Answer DownloadReports(const AdminRequest& request)
{
    const ReportQuery query = ReportQuery::Read(request);
    if (!query.problem.empty())
        throw Fault(400, query.problem);
    ReportFilter filter = query.Filter();
    if (!query.failing.empty())
        filter.failing = FindLines(request.database, query.referrer, query.failing);
    const bool isCsv = request.Query("format") == "csv";
    Answer answer =
        AllReports(request.database, query, filter, isCsv ? ReportFormat::Csv : ReportFormat::Json);
    answer.headers.emplace_back("Content-Disposition", fmt::format("attachment; filename=\"reports-{}.{}\"",
                                                                   DayText(Now()), isCsv ? "csv" : "json"));
    return answer;
}

Answer ReadReport(const AdminRequest& request)
{
    const auto report = Reports(request.database).Find(request.Id());
    if (!report)
        throw Fault(404, "There is no such report.");
    const auto verdicts = Verdicts(request.database).OnReport(report->id);
    const std::string total(verdicts.empty() ? "" : ToString(verdicts.front().total));
    return Answer::Of("application/json", JsonEntry(*report, total));
}

Answer ListReferrers(const AdminRequest& request)
{
    if (const std::string problem = Period::Problem(request); !problem.empty())
        throw Fault(400, problem);
    const Days days = Period::Read(request, Period::All).Range();
    std::map<std::string, ordered_json> sessions;
    for (const VersionCount& version : DayCounts(request.database).OfAllProducts(days)) {
        sessions[version.referrer].push_back({{"version", version.version},
                                              {"pass", version.sessions.pass},
                                              {"fail", version.sessions.fail},
                                              {"unknown", version.sessions.unknown}});
    }
    auto reports = DayCounts(request.database).Reports(days);
    ordered_json entries = ordered_json::array();
    for (const Product& product : RequirementSets(request.database).Products()) {
        const auto judged = sessions.find(product.referrer);
        entries.push_back(
            {{"referrer", product.referrer},
             {"version", product.version},
             {"published", product.version > 0 ? ordered_json(IsoTime(product.published)) : ordered_json()},
             {"draft", product.hasDraft},
             {"reports", reports[product.referrer]},
             {"sessions", judged == sessions.end() ? ordered_json::array() : judged->second}});
    }
    return JsonAnswer({{"referrers", entries}});
}

Answer ReadDraft(const AdminRequest& request)
{
    const auto draft = RequirementSets(request.database).FindDraft(request.Referrer());
    if (!draft)
        throw Fault(404, "There is no draft.");
    Answer answer = Answer::Of("application/json", draft->text);
    answer.headers.emplace_back("ETag", '"' + std::to_string(draft->revision) + '"');
    return answer;
}

Answer WriteDraft(const AdminRequest& request)
{
    const std::string& referrer = request.Referrer();
    const std::string* none = request.http.Header("If-None-Match");
    const bool isNew = none && *none == "*";
    const int revision = isNew ? 0 : ReadRevision(request);
    if (const std::string reason = CheckRequirements(request.http.body).ErrorText(); !reason.empty())
        throw Fault(422, reason);
    const auto written =
        revision < 0
            ? std::nullopt
            : Drafts(request.database, request.login.account).Save(referrer, request.http.body, revision);
    if (!written)
        throw Stale();
    Answer answer = JsonAnswer({{"revision", *written}}, isNew ? 201 : 200);
    answer.headers.emplace_back("ETag", '"' + std::to_string(*written) + '"');
    return answer;
}

Answer PublishRevision(const AdminRequest& request)
{
    const auto publication =
        Drafts(request.database, request.login.account).Publish(request.Referrer(), ReadRevision(request));
    if (publication.version)
        return JsonAnswer({{"version", *publication.version}});
    throw publication.reason.empty() ? Stale() : Fault(422, publication.reason);
}

}  // namespace kel::server
