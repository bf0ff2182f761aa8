#include "server/admin/ReportPage.h"

#include <nlohmann/json.hpp>

#include "server/admin/Layout.h"
#include "server/admin/Recent.h"
#include "server/admin/ReportsPage.h"
#include "server/admin/Table.h"
#include "server/admin/Texts.h"
#include "server/admin/ValueNames.h"
#include "server/base/Log.h"
#include "server/report/Report.h"
#include "server/store/Deletion.h"
#include "verdict/Requirements.h"
#include "verdict/Verdict.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr int MostReports = 20;             // of the session
constexpr std::size_t MostVerdicts = 5;     // the newest
constexpr std::size_t MostValues = 2000;    // that a page shows
constexpr std::size_t LongestValue = 1000;  // bytes that it shows of one
constexpr int MaxBatches = 25;              // of a deletion, some seconds

Html TextOrDash(const std::string& text)
{
    return text.empty() ? Html("–") : Html::Stored(Shortened(text, LongestValue));
}

Html Fact(const char* name, const Html& value)
{
    return Html::Element("dt", {}, name) + Html::Element("dd", {}, value);
}

Html FactsOf(const FullReport& report)
{
    return Html::Element(
        "dl", {{"class", "facts card"}},
        {Fact("Received (UTC)", Moment(report.received)),
         Fact("Product",
              report.referrer.empty() ? Html("–") : Link(ProductPath(report.referrer), report.referrer)),
         Fact("Session", TextOrDash(report.session)), Fact("User", TextOrDash(report.user)),
         Fact("Machine", TextOrDash(report.machine))});
}

Html ValuesOf(const Report& report)
{
    Table table("Values that the control told", {{"Id"}, {"What"}, {"Index", true}, {"Value"}});
    std::size_t count = 0;
    for (const auto& [key, value] : report.All()) {
        if (++count > MostValues)
            break;
        table.Add({Html::Stored(Shortened(key.first, LongestValue)), NameOfValue(key.first),
                   std::to_string(key.second), TextOrDash(value)});
    }
    Html values = table.Done("The report has no value.");
    if (count > MostValues)
        values += Html::Element("p", {},
                                "The first " + Grouped(MostValues) + " of " +
                                    Grouped(static_cast<std::int64_t>(report.Count())) + " values.");
    return values;
}

}  // namespace

FullReport ReportPage::Find(const Visit& visit) const
{
    auto report = store.FindReport(visit.Id());
    if (!report)
        throw Fault(404, "There is no such report. It may have been deleted.");
    return *report;
}

Html ReportPage::VerdictOf(const StoredVerdict& verdict, const FullReport& report) const
{
    Table table("By version " + std::to_string(verdict.version) + " of " + verdict.referrer + ", " +
                    TimeText(verdict.judged) + " UTC",
                {{"Requirement"}, {"Needed"}, {"Found"}, {"Result"}});
    try {
        // The stored lines have what was found; the requirements say what was needed.
        const Report values = Report::Read(report.body);
        const Verdict read = Judge(Requirements::Read(store.SetText(verdict.set)), values.Lookup());
        const auto stored = nlohmann::json::parse(verdict.lines);
        for (std::size_t i = 0; i < read.lines.size() && i < stored.size(); ++i) {
            const VerdictLine& line = read.lines[i];
            const std::string result = stored[i].at("result").get<std::string>();
            Html found = Mark(result);
            if (result != "pass" && !line.advice.empty())
                found += Html::Element("div", {}, Html::Stored(line.advice));
            table.Add({LabelOf(line.label, line.recommended), Html::Stored(line.needed),
                       TextOrDash(stored[i].at("found").get<std::string>()), found});
        }
    } catch (const std::exception& error) {
        return Notice("bad", std::string("The verdict cannot be read: ") + error.what());
    }
    return Html::Element("p", {}, {"Result: ", Mark(verdict.total)}) +
           table.Done("The requirements have no line.");
}

Answer ReportPage::Show(const Visit& visit) const
{
    const FullReport report = Find(visit);
    Html content = FactsOf(report);
    content += Html::Element("h2", {}, "Verdicts");
    const auto verdicts = store.VerdictsOf(report.id);
    for (std::size_t i = 0; i < verdicts.size() && i < MostVerdicts; ++i)
        content += VerdictOf(verdicts[i], report);
    if (verdicts.empty())
        content += Html::Element("p", {{"class", "empty"}}, "Nobody has asked for a verdict on this report.");
    ReportFilter filter;
    filter.session = report.session;
    filter.beforeId = report.id;
    filter.count = MostReports;
    content += Html::Element("h2", {}, "Earlier reports of the session") +
               ReportsTable("Earlier reports of the same session", store.Reports(filter), "There are none.");
    content += Html::Element("h2", {}, "Values") + ValuesOf(ReadStored(report.body).value_or(Report()));
    if (visit.IsEditor())
        content += Html::Element(
            "p", {},
            ButtonLink(ReportPath(report.id) + "/delete", "Delete all reports of this session…", "danger"));
    return Page(visit, "Report " + std::to_string(report.id), content);
}

Answer ReportPage::AskToDelete(const Visit& visit) const
{
    const FullReport report = Find(visit);
    const Html content =
        Html::Element("p", {},
                      {"All reports of the session ", Html::Stored(Shortened(report.session, LongestValue)),
                       " and their verdicts go for good."}) +
        PostForm(visit, ReportPath(report.id) + "/delete",
                 Html::Element("div", {{"class", "buttons"}},
                               {Button("Delete them", "danger"), Link(ReportPath(report.id), "Keep them")}));
    return Page(visit, "Delete a session", content);
}

Answer ReportPage::Delete(const Visit& visit) const
{
    const FullReport report = Find(visit);
    DeletionEntry entry{visit.login.account, "deleted session", Shortened(report.session, LongestValue)};
    const Deletion deletion = Deletion::OfSession(store, report.session, &entry, MaxBatches);
    Log(Level::Info, "deleted",
        {{"account", visit.login.account},
         {"session", report.session},
         {"reports", std::to_string(entry.reports)}});
    return Redirect(deletion.isComplete ? "/reports?note=deleted"
                                        : "/reports?note=left&session=" + UrlEncode(report.session));
}

}  // namespace kel::server
