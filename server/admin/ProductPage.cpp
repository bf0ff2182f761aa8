#include <fmt/format.h>
#include <algorithm>

#include "server/admin/Layout.h"
#include "server/admin/LineFigures.h"
#include "server/admin/MachineCharts.h"
#include "server/admin/Pages.h"
#include "server/admin/ProductPages.h"
#include "server/admin/ReportQuery.h"
#include "server/admin/SessionTrend.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "server/store/DayCounts.h"
#include "server/store/RequirementSets.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxVersions = 3;  // whose lines a page shows

Html TotalFigures(const Counts& totals, const ReportQuery& sessions)
{
    return Html::Element("div", {{"class", "card figures"}},
                         {Figure("sessions", CountLink(sessions, totals.All())),
                          Figure("pass", CountLink(sessions.With("pass"), totals.pass)),
                          Figure("fail", CountLink(sessions.With("fail"), totals.fail)),
                          Figure("unknown", CountLink(sessions.With("unknown"), totals.unknown)),
                          Figure("passing", Percentage(totals.pass, totals.All()))});
}

Html VersionTable(const std::vector<VersionCount>& versions, const ReportQuery& sessions)
{
    Table table("Sessions by the version that judged them",
                {{"Version"},
                 {"Published (UTC)"},
                 {"Sessions", true},
                 {"Pass", true},
                 {"Fail", true},
                 {"Unknown", true},
                 {"Passing", true}},
                "dense");
    for (const VersionCount& version : versions) {
        const ReportQuery of = sessions.OfVersion(version.version);
        const Counts& count = version.sessions;
        table.Add({Link(fmt::format("{}/version?number={}", ProductPath(version.referrer), version.version),
                        std::to_string(version.version)),
                   Moment(version.published), CountLink(of, count.All()),
                   CountLink(of.With("pass"), count.pass), CountLink(of.With("fail"), count.fail),
                   CountLink(of.With("unknown"), count.unknown), Percentage(count.pass, count.All())});
    }
    return table.Done("None.");
}

Html VerdictFigures(Database& database, const std::vector<VersionCount>& versions,
                    const ReportQuery& sessions)
{
    const SessionTrend trend(database, sessions);
    Html sentence, tables;
    for (std::size_t i = 0; i < std::min(versions.size(), MaxVersions); ++i) {
        const LineFigures lines(database, versions[i], sessions);
        if (sentence.IsEmpty())  // all sessions of a version may meet all of its lines
            sentence = lines.Sentence();
        if (i == 0)
            tables += lines.Tables();
        else
            tables += Html::Element(
                "details", {},
                {Html::Element("summary", {}, fmt::format("Lines of version {}", versions[i].version)),
                 lines.Tables()});
    }
    if (versions.size() > 1)
        tables = VersionTable(versions, sessions) + tables;
    Html basis;
    if (versions.size() > 1)
        basis = Html::Element(
            "p", {{"class", "basis"}},
            fmt::format("Of all {} versions that judged them; each one is listed below.", versions.size()));
    return trend.Sentence() + sentence + TotalFigures(SumSessions(versions), sessions) + basis +
           trend.Show() + tables;
}

/// Throws Fault 404 for a name that nothing stored has.
void RequireKnown(Database& database, const std::string& referrer, const std::vector<PublishedSet>& published)
{
    ReportFilter any;
    any.referrer = referrer;
    any.count = 1;
    if (published.empty() && !RequirementSets(database).FindDraft(referrer) &&
        Reports(database).List(any).empty())
        throw Fault(404, "There is no such product.");
}

/// What is missing for figures, and where to go for it.
Html NoSessions(const ReportQuery& sessions, bool isPublished)
{
    const std::string& referrer = sessions.referrer;
    if (!isPublished)
        return Html::Element("p", {{"class", "empty"}},
                             {"Nothing is published for this product yet, so no session can be judged. ",
                              Link(RequirementsPath(referrer), "To its requirements"), "."});
    if (!sessions.period.IsAll())
        return Html::Element(
            "p", {{"class", "empty"}},
            {fmt::format("No session was judged {}. ", sessions.period.Text()),
             Link(ProductPath(referrer) + "?period=" + std::string(Period::All), "Show all days"), "."});
    return Html::Element(
        "p", {{"class", "empty"}},
        {"No session was judged yet. Figures appear once a page with the control names the referrer ",
         Html::Stored(referrer), " and asks for an analysis."});
}

}  // namespace

Answer ShowProduct(const AdminRequest& request)
{
    const std::string& referrer = request.Referrer();
    const auto published = RequirementSets(request.database).Versions(referrer);
    RequireKnown(request.database, referrer, published);
    const ReportQuery sessions = ReportQuery::SessionsOf(referrer, Period::Read(request, Period::Usual));
    const auto versions = DayCounts(request.database).ByVersion(referrer, sessions.period.Range());
    ReportQuery reports = sessions;
    reports.isOnce = false;
    Html content = Html::Element("p", {{"class", "buttons beside"}},
                                 {ButtonLink(RequirementsPath(referrer), "Requirements"),
                                  ButtonLink(reports.Address(), "Reports")}) +
                   sessions.period.Choice(ProductPath(referrer));
    if (versions.empty()) {
        content += NoSessions(sessions, !published.empty());
    } else {
        content += VerdictFigures(request.database, versions, sessions) +
                   Html::Element("h2", {{"id", "values"}}, "What visitors have") +
                   MachineCharts(request.database, sessions, SumSessions(versions).All(),
                                 static_cast<int>(std::clamp<std::int64_t>(
                                     WholeNumber(request.Query("value")), 0, INT32_MAX)));
    }
    return PageOfProduct(request, referrer, content);
}

}  // namespace kel::server
