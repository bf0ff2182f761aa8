
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/ReportsTable.h"
#include "server/admin/ValueNames.h"
#include "server/admin/figures/Recent.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "server/base/Log.h"
#include "server/report/Report.h"
#include "server/store/Deletion.h"
#include "server/store/Reports.h"
#include "server/store/RequirementSets.h"
#include "server/store/Verdicts.h"
#include "verdict/Requirements.h"
#include "verdict/Verdict.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr int MaxReports = 20;               // of the session
constexpr std::size_t MaxVerdicts = 5;       // the newest
constexpr std::size_t MaxValues = 2000;      // that a page shows
constexpr std::size_t MaxValueBytes = 1000;  // bytes of a value that a page shows
constexpr int MaxBatches = 25;               // of a deletion, which take some seconds

Html TextOrDash(const std::string& text)
{
    return text.empty() ? Html("–") : Html::Stored(Shortened(text, MaxValueBytes));
}

Html Fact(const char* name, const Html& value)
{
    return Html::Element("dt", {}, name) + Html::Element("dd", {}, value);
}

Html ReportFacts(const FullReport& report)
{
    return Html::Element(
        "dl", {{"class", "facts card"}},
        {Fact("Received (UTC)", Moment(report.received)),
         Fact("Product",
              report.referrer.empty() ? Html("–") : Link(ProductPath(report.referrer), report.referrer)),
         Fact("Session", TextOrDash(report.session)), Fact("User", TextOrDash(report.user)),
         Fact("Machine", TextOrDash(report.machine))});
}

Html ValuesTable(const Report& report)
{
    Table table("Reported values", {{"Id"}, {"What"}, {"Index", true}, {"Value"}});
    std::size_t count = 0;
    for (const auto& [key, value] : report.All()) {
        if (++count > MaxValues)
            break;
        table.Add({Html::Stored(Shortened(key.first, MaxValueBytes)), NameOfValue(key.first),
                   std::to_string(key.second), TextOrDash(value)});
    }
    Html values = table.Done("The report has no value.");
    if (count > MaxValues)
        values += Html::Element("p", {},
                                fmt::format("The first {} of {} values.", Grouped(MaxValues),
                                            Grouped(static_cast<std::int64_t>(report.Count()))));
    return values;
}

FullReport FindReport(const AdminRequest& request)
{
    auto report = Reports(request.database).Find(request.Id());
    if (!report)
        throw Fault(404, "There is no such report. It may have been deleted.");
    return *report;
}

Html VerdictTable(Database& database, const StoredVerdict& verdict, const FullReport& report)
{
    Table table(fmt::format("By version {} of {}, {} UTC", verdict.version, verdict.referrer,
                            TimeText(verdict.judged)),
                {{"Requirement"}, {"Needed"}, {"Found"}, {"Result"}});
    try {
        // The stored lines have the found values; the requirements have the needed ones.
        const Report values = Report::Read(report.body);
        const Verdict read =
            Judge(Requirements::Read(RequirementSets(database).Text(verdict.set)), values.Lookup());
        const auto stored = nlohmann::json::parse(verdict.lines);
        for (std::size_t i = 0; i < read.lines.size() && i < stored.size(); ++i) {
            const VerdictLine& line = read.lines[i];
            const Result result =
                ParseResult(stored[i].at("result").get<std::string>()).value_or(Result::Unknown);
            Html found = Mark(result);
            if (result != Result::Pass && !line.advice.empty())
                found += Html::Element("div", {}, Html::Stored(line.advice));
            table.Add({LineLabel(line.label, line.recommended), Html::Stored(line.needed),
                       TextOrDash(stored[i].at("found").get<std::string>()), found});
        }
    } catch (const std::exception& error) {
        return Notice("bad", std::string("The verdict cannot be read: ") + error.what());
    }
    return Html::Element("p", {}, {"Result: ", Mark(verdict.total)}) +
           table.Done("The requirements have no line.");
}

}  // namespace

Answer ShowReport(const AdminRequest& request)
{
    const FullReport report = FindReport(request);
    Html content = ReportFacts(report);
    content += Html::Element("h2", {}, "Verdicts");
    const auto verdicts = Verdicts(request.database).OnReport(report.id);
    for (std::size_t i = 0; i < verdicts.size() && i < MaxVerdicts; ++i)
        content += VerdictTable(request.database, verdicts[i], report);
    if (verdicts.empty())
        content += Html::Element("p", {{"class", "empty"}}, "No verdict was requested for this report.");
    ReportFilter filter;
    filter.session = report.session;
    filter.beforeId = report.id;
    filter.count = MaxReports;
    content +=
        Html::Element("h2", {}, "Earlier reports of the session") +
        ReportsTable("Earlier reports of the same session", Reports(request.database).List(filter), "None.");
    content += Html::Element("h2", {}, "Values") + ValuesTable(ReadStored(report.body).value_or(Report()));
    if (request.IsEditor())
        content += Html::Element(
            "p", {},
            ButtonLink(ReportPath(report.id) + "/delete", "Delete all reports of this session…", "danger"));
    return Page(request, fmt::format("Report {}", report.id), content);
}

Answer AskToDeleteSession(const AdminRequest& request)
{
    const FullReport report = FindReport(request);
    const Html content =
        Html::Element("p", {},
                      {"All reports of the session ", Html::Stored(Shortened(report.session, MaxValueBytes)),
                       " and their verdicts will be permanently deleted."}) +
        PostForm(request, ReportPath(report.id) + "/delete",
                 Html::Element("div", {{"class", "buttons"}},
                               {Button("Delete them", "danger"), Link(ReportPath(report.id), "Keep them")}));
    return Page(request, "Delete a session", content);
}

Answer DeleteSession(const AdminRequest& request)
{
    const FullReport report = FindReport(request);
    DeletionEntry entry{request.login.account, "deleted session", Shortened(report.session, MaxValueBytes)};
    const Deletion deletion = Deletion::OfSession(request.database, report.session, &entry, MaxBatches);
    Log(Level::Info, "deleted",
        {{"account", request.login.account}, {"reports", std::to_string(entry.reports)}});
    return Redirect(deletion.isComplete ? "/reports?note=deleted"
                                        : "/reports?note=left&session=" + UrlEncode(report.session));
}

}  // namespace kel::server
