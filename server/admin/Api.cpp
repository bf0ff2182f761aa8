#include "server/admin/Api.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "server/admin/Csv.h"
#include "server/admin/Texts.h"
#include "server/base/Text.h"
#include "server/http/Limits.h"
#include "server/report/Report.h"
#include "server/verdict/Requirements.h"

namespace kel::server {

namespace {

using nlohmann::ordered_json;

constexpr int UsualReports = 100, MostReports = 1000;
constexpr std::size_t MostBytes = 4 * Limits::Megabyte;  // of an answer; what is left follows in the next
constexpr std::size_t LongestCell = 200;                 // bytes of what each row of a report repeats

Answer JsonAnswer(const ordered_json& content, int status = 200)
{
    Answer answer =
        Answer::Of("application/json", content.dump(-1, ' ', false, ordered_json::error_handler_t::replace));
    answer.status = status;
    return answer;
}

std::string Quoted(const std::string& text)
{
    return ordered_json(text).dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

/// Text at once: as objects, a report of tiny values would take many times its memory.
std::string Entry(const FullReport& report, const std::string& total)
{
    std::string entry =
        "{\"id\":" + std::to_string(report.id) + ",\"received\":" + Quoted(IsoTime(report.received)) +
        ",\"session\":" + Quoted(report.session) + ",\"referrer\":" + Quoted(report.referrer) +
        ",\"user\":" + Quoted(report.user) + ",\"machine\":" + Quoted(report.machine) +
        ",\"total\":" + Quoted(total) + ",\"values\":[";
    const Report read = Report::Read(report.body);
    for (const auto& [key, value] : read.All()) {
        entry += (entry.back() == '[' ? "{\"id\":" : ",{\"id\":") + Quoted(key.first);
        entry += ",\"index\":" + std::to_string(key.second) + ",\"value\":" + Quoted(value) + '}';
    }
    return entry + "]}";
}

std::string Records(const FullReport& report, const std::string& total)
{
    std::string records;
    const Report read = Report::Read(report.body);
    // Together they stay below the bound however many values share them.
    const std::size_t longest = std::min(LongestCell, MostBytes / 4 / std::max<std::size_t>(read.Count(), 1));
    const std::string session = Shortened(report.session, longest), user = Shortened(report.user, longest),
                      machine = Shortened(report.machine, longest);
    for (const auto& [key, value] : read.All())
        records += CsvRecord({std::to_string(report.id), IsoTime(report.received), session, report.referrer,
                              user, machine, total, key.first, std::to_string(key.second), value});
    return records;
}

/// The draft's revision that the request is for: If-Match: "3".
int RevisionOf(const Visit& visit)
{
    const std::string* match = visit.request.Header("If-Match");
    if (!match)
        throw Fault(428, "The request has to say with If-Match which draft it is for.");
    const bool isQuoted = match->size() > 2 && match->front() == '"' && match->back() == '"';
    const std::int64_t revision =
        isQuoted ? WholeNumber(std::string_view(*match).substr(1, match->size() - 2)) : -1;
    return revision > 0 && revision <= INT32_MAX ? static_cast<int>(revision) : -1;
}

const std::string& ReferrerOf(const Visit& visit)
{
    if (!IsReferrer(visit.subject))
        throw Fault(404, "There is no such referrer.");
    return visit.subject;
}

void CheckRequirements(const std::string& text)
{
    try {
        Requirements::Read(text);
    } catch (const std::exception& error) {
        throw Fault(422, error.what());
    }
}

Fault Stale()
{
    return {412, "The draft has another revision by now."};
}

}  // namespace

Answer ProgramError(int status, const std::string& reason)
{
    Answer answer = JsonAnswer({{"error", reason}}, status);
    if (status == 401)
        answer.headers.emplace_back("WWW-Authenticate", "Bearer");
    return answer;
}

Answer Api::Reports(const Visit& visit) const
{
    const std::string after = visit.Query("after"), count = visit.Query("count"),
                      format = visit.Query("format");
    ReportFilter filter;
    filter.afterId = after.empty() ? 0 : WholeNumber(after);
    filter.count = count.empty() ? UsualReports
                                 : static_cast<int>(std::min<std::int64_t>(WholeNumber(count), MostReports));
    if (filter.afterId < 0 || filter.count < 1 || (!format.empty() && format != "csv" && format != "json"))
        throw Fault(400, "'after' and 'count' are whole numbers, and 'format' is json or csv.");
    const bool isCsv = format == "csv";
    const std::string head = isCsv ? CsvRecord({"report", "received", "session", "referrer", "user",
                                                "machine", "total", "id", "index", "value"})
                                   : "{\"reports\":[";
    std::string text = head;
    std::int64_t last = filter.afterId;
    for (const ReportLine& line : store.Reports(filter)) {
        if (const auto report = store.FindReport(line.id)) {  // unless it was deleted meanwhile
            std::string more = isCsv ? Records(*report, line.total) : Entry(*report, line.total);
            const bool isFirst = text.size() == head.size();
            if (!isFirst && text.size() + more.size() > MostBytes)
                break;
            text += (isFirst || isCsv ? "" : ",") + more;
        }
        last = line.id;
    }
    if (isCsv)
        return Answer::Of("text/csv; charset=utf-8; header=present", std::move(text));
    return Answer::Of("application/json", text + "],\"last\":" + std::to_string(last) + "}");
}

Answer Api::Referrers(const Visit&) const
{
    ordered_json entries = ordered_json::array();
    for (const Product& product : store.Products()) {
        const Totals totals = store.RecentTotals(product.referrer, MostReports);
        entries.push_back(
            {{"referrer", product.referrer},
             {"version", product.version},
             {"published", product.version > 0 ? ordered_json(IsoTime(product.published)) : ordered_json()},
             {"draft", product.hasDraft},
             {"recent", {{"pass", totals.pass}, {"fail", totals.fail}, {"unknown", totals.unknown}}}});
    }
    return JsonAnswer({{"referrers", entries}});
}

Answer Api::ReadDraft(const Visit& visit) const
{
    const auto draft = store.FindDraft(ReferrerOf(visit));
    if (!draft)
        throw Fault(404, "There is no draft.");
    Answer answer = Answer::Of("application/json", draft->text);
    answer.headers.emplace_back("ETag", '"' + std::to_string(draft->revision) + '"');
    return answer;
}

Answer Api::WriteDraft(const Visit& visit) const
{
    const std::string& referrer = ReferrerOf(visit);
    const std::string* none = visit.request.Header("If-None-Match");
    const bool isNew = none && *none == "*";
    const int revision = isNew ? 0 : RevisionOf(visit);
    CheckRequirements(visit.request.body);
    const auto written = revision < 0
                             ? std::nullopt
                             : store.KeepDraft(referrer, visit.request.body, revision, visit.login.account);
    if (!written)
        throw Stale();
    Answer answer = JsonAnswer({{"revision", *written}}, isNew ? 201 : 200);
    answer.headers.emplace_back("ETag", '"' + std::to_string(*written) + '"');
    return answer;
}

Answer Api::Publish(const Visit& visit) const
{
    const std::string& referrer = ReferrerOf(visit);
    const int revision = RevisionOf(visit);
    const auto draft = store.FindDraft(referrer);
    if (!draft || draft->revision != revision)
        throw Stale();
    CheckRequirements(draft->text);
    const auto version = store.PublishDraft(referrer, revision, visit.login.account);
    if (!version)
        throw Stale();
    return JsonAnswer({{"version", *version}});
}

}  // namespace kel::server
