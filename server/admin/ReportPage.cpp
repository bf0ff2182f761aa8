
#include <fmt/format.h>
#include <algorithm>
#include <nlohmann/json.hpp>

#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/ReportQuery.h"
#include "server/admin/ReportsTable.h"
#include "server/admin/ValueNames.h"
#include "server/admin/VerdictTable.h"
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
#include "verdict/text/SessionNumber.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr int MaxReports = 20;               // of the session, and of the machine
constexpr std::size_t MaxVerdicts = 5;       // the newest
constexpr std::size_t MaxValues = 2000;      // that a page shows
constexpr std::size_t MaxValueBytes = 1000;  // bytes of a value that a page shows
constexpr int MaxCounted = 5000;             // reports of a session, before it is deleted
constexpr int MaxBatches = 25;               // of a deletion, which take some seconds

/// The text, which leads to all reports that have it.
Html ListLink(const std::string& text, std::string ReportQuery::*field)
{
    if (text.empty() || text.size() > ValueCondition::MaxLinkedBytes)
        return TextOrDash(text);
    ReportQuery query;
    query.*field = text;
    return Link(query.Address(), TextOrDash(text));
}

Html ReportFacts(Database& database, const FullReport& report)
{
    auto titles = RequirementSets(database).Titles({report.referrer});
    return Html::Element(
        "dl", {{"class", "facts card"}},
        {DescriptionEntry("Received (UTC)", Moment(report.received)),
         DescriptionEntry("Product", report.referrer.empty()
                                         ? Html("–")
                                         : ProductLink(report.referrer, titles[report.referrer])),
         DescriptionEntry("Session", ListLink(report.session, &ReportQuery::session)),
         DescriptionEntry("Session's number", TextOrDash(SessionNumber(report.session))),
         DescriptionEntry("User", ListLink(report.user, &ReportQuery::user)),
         DescriptionEntry("Machine", ListLink(report.machine, &ReportQuery::machine))});
}

Html ValuesTable(const Report& report)
{
    Table table("Reported values", {{"Id"}, {"What"}, {"Index", true}, {"Value"}}, "dense");
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

/// The stored lines have the found values; the requirements have the needed ones.
Html StoredVerdictTable(Database& database, const StoredVerdict& verdict, const FullReport& report)
{
    const std::string caption = fmt::format("By version {} of {}, {} UTC", verdict.version, verdict.referrer,
                                            TimeText(verdict.judged));
    try {
        const Report values = Report::Read(report.body);
        Verdict read =
            Judge(Requirements::Read(RequirementSets(database).Text(verdict.set)), values.Lookup());
        const auto stored = nlohmann::json::parse(verdict.lines);
        read.lines.resize(std::min(read.lines.size(), stored.size()));
        for (std::size_t i = 0; i < read.lines.size(); ++i) {
            read.lines[i].result =
                ParseResult(stored[i].at("result").get<std::string>()).value_or(Result::Unknown);
            read.lines[i].found = stored[i].at("found").get<std::string>();
        }
        read.total = verdict.total;
        return VerdictTable(caption, read);
    } catch (const std::exception& error) {
        return Notice("bad", std::string("The verdict cannot be read: ") + error.what());
    }
}

/// The verdict by the newest requirements, which is not stored.
Html TodaysVerdictTable(Database& database, const PublishedSet& set, const FullReport& report)
{
    const std::string caption =
        fmt::format("By today's requirements, version {} of {}; this verdict is not stored", set.version,
                    report.referrer);
    try {
        const Report values = Report::Read(report.body);
        return VerdictTable(
            caption, Judge(Requirements::Read(RequirementSets(database).Text(set.id)), values.Lookup()));
    } catch (const std::exception& error) {
        return Notice("bad", std::string("The report cannot be judged: ") + error.what());
    }
}

/// The verdicts on a report, and today's if it is asked for or offered.
Html ShowVerdicts(const AdminRequest& request, const FullReport& report)
{
    const auto verdicts = Verdicts(request.database).OnReport(report.id);
    const auto today =
        report.referrer.empty() ? std::nullopt : RequirementSets(request.database).Newest(report.referrer);
    const bool isOutdated = today && (verdicts.empty() || verdicts.front().set != today->id);
    Html content = Html::Element("h2", {}, "Verdicts");
    if (isOutdated && request.Query("judge") == "today")
        content += TodaysVerdictTable(request.database, *today, report);
    else if (isOutdated)
        content += Html::Element(
            "p", {}, ButtonLink(ReportPath(report.id) + "?judge=today", "Judge by today's requirements"));
    for (std::size_t i = 0; i < verdicts.size() && i < MaxVerdicts; ++i)
        content += StoredVerdictTable(request.database, verdicts[i], report);
    if (verdicts.empty())
        content += Html::Element("p", {{"class", "empty"}}, "No verdict was requested for this report.");
    return content;
}

Html ReportsOfMachine(Database& database, const FullReport& report)
{
    std::vector<ReportLine> lines;
    if (!report.machine.empty()) {
        ReportFilter filter;
        filter.machine = report.machine;
        filter.count = MaxReports + 1;
        lines = Reports(database).List(filter);
        std::erase_if(lines, [&](const ReportLine& line) { return line.id == report.id; });
        lines.resize(std::min<std::size_t>(lines.size(), MaxReports));
    }
    return Html::Element("h2", {}, "Other reports of the machine") +
           ReportsTable(database, "Other reports of the same machine, the newest first", lines, "None.");
}

}  // namespace

Answer ShowReport(const AdminRequest& request)
{
    const FullReport report = FindReport(request);
    Html content = ReportFacts(request.database, report);
    content += Html::Element("p", {{"class", "buttons"}},
                             ButtonLink(ReportPath(report.id) + "/xml", "Download the XML"));
    content += ShowVerdicts(request, report);
    ReportFilter filter;
    filter.session = report.session;
    filter.beforeId = report.id;
    filter.count = MaxReports;
    content += Html::Element("h2", {}, "Earlier reports of the session") +
               ReportsTable(request.database, "Earlier reports of the same session",
                            Reports(request.database).List(filter), "None.");
    content += ReportsOfMachine(request.database, report);
    content +=
        Html::Element("h2", {}, "Values") + ValuesTable(Report::ReadStored(report.body).value_or(Report()));
    if (request.IsEditor())
        content += Html::Element(
            "p", {},
            ButtonLink(ReportPath(report.id) + "/delete", "Delete all reports of this session…", "danger"));
    return Page(request, fmt::format("Report {}", report.id), content);
}

Answer DownloadReport(const AdminRequest& request)
{
    const FullReport report = FindReport(request);
    Answer answer = Answer::Of("text/xml; charset=utf-8", report.body);
    answer.headers.emplace_back("Content-Disposition",
                                fmt::format("attachment; filename=\"report-{}.xml\"", report.id));
    return answer;
}

Answer AskToDeleteSession(const AdminRequest& request)
{
    const FullReport report = FindReport(request);
    const int count = Reports(request.database).CountOfSession(report.session, MaxCounted + 1);
    const std::string reports = count > MaxCounted ? fmt::format("More than {} reports", Grouped(MaxCounted))
                                : count == 1       ? "The only report"
                                                   : fmt::format("All {} reports", Grouped(count));
    const Html content =
        ReportFacts(request.database, report) +
        Html::Element("p", {},
                      {reports + " of the session ", Html::Stored(Shortened(report.session, MaxValueBytes)),
                       fmt::format(", with {} verdicts, will be permanently deleted. The counts by day stay.",
                                   count == 1 ? "its" : "their")}) +
        PostForm(request, ReportPath(report.id) + "/delete",
                 Html::Element("div", {{"class", "buttons"}},
                               {Button("Delete", "danger"), Link(ReportPath(report.id), "Keep")}));
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
