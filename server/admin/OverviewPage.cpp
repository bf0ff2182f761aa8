#include <fmt/format.h>

#include "server/admin/Layout.h"
#include "server/admin/Pages.h"
#include "server/admin/ProductList.h"
#include "server/admin/ReportQuery.h"
#include "server/admin/ReportsTable.h"
#include "server/admin/SessionTrend.h"
#include "server/admin/kit/Texts.h"
#include "server/store/DayCounts.h"
#include "server/store/Reports.h"

namespace kel::server {

namespace {

constexpr int NewestReports = 5;

Html NewProductForm()
{
    return Html::Element("form", {{"method", "get"}, {"action", "/new"}, {"class", "card filter"}},
                         {Field("New product: the referrer's name", "referrer", "", "text",
                                {{"required", ""},
                                 {"maxlength", "64"},
                                 {"pattern", "[A-Za-z0-9_\\-]+"},
                                 {"title", "Letters, digits, - and _"}}),
                          Html::Element("div", {{"class", "field"}}, Button("Write requirements", "plain"))});
}

struct ReportCounts {
    std::int64_t all = 0, others = 0;  // others: for no product that has requirements
};

ReportCounts CountReports(Database& database, const Period& period)
{
    ReportCounts counts;
    for (const auto& [referrer, count] : DayCounts(database).Reports(period.Range())) {
        counts.all += count;
        counts.others += referrer.empty() ? count : 0;
    }
    return counts;
}

/// How many reports arrived, with those that belong to no product.
Html Arrivals(const ReportCounts& counts, const Period& period)
{
    ReportQuery reports;
    reports.period = period;
    std::string others;
    if (counts.others > 0)
        others = fmt::format(", {} of them for no product that has requirements", Grouped(counts.others));
    return Html::Element(
        "p", {{"class", "lead"}},
        {fmt::format("Reports {}: ", period.Text()), CountLink(reports, counts.all), others + "."});
}

const char* HealthText(Database& database)
{
    switch (database.State()) {
        case DatabaseState::Ready:
            return "takes reports";
        case DatabaseState::ReadOnly:
            return "database is read-only";
        default:
            return "no room for reports";
    }
}

/// "3 minutes ago", so that nobody has to know the time in UTC.
std::string Ago(std::int64_t time)
{
    constexpr std::int64_t Minute = 60'000, Hour = 60 * Minute;
    const std::int64_t age = Now() - time;
    return age < 2 * Minute      ? "just now"
           : age < 2 * Hour      ? fmt::format("{} minutes ago", age / Minute)
           : age < 2 * DayLength ? fmt::format("{} hours ago", age / Hour)
                                 : fmt::format("{} days ago", Grouped(age / DayLength));
}

Html StateFigures(Database& database, const std::vector<ReportLine>& newest)
{
    ReportQuery reports;
    reports.period = Period::Of("today");
    Html last = "–";
    if (!newest.empty())
        last = Link(ReportPath(newest.front().id), Ago(newest.front().received));
    return Html::Element(
        "div", {{"class", "card figures"}},
        {Figure("reports today", CountLink(reports, CountReports(database, reports.period).all)),
         Figure("last report", last), Figure("service", HealthText(database))});
}

}  // namespace

Answer ShowOverview(const AdminRequest& request)
{
    const Period period = Period::Read(request, Period::Usual);
    const SessionTrend trend(request.database, ReportQuery::SessionsOf("", period));
    ReportFilter filter;
    filter.count = NewestReports;
    const std::vector<ReportLine> newest = Reports(request.database).List(filter);
    Html content = period.Choice("/") + trend.Sentence();
    content += Html::Element("div", {{"class", "charts"}},
                             {Html::Element("div", {},
                                            {StateFigures(request.database, newest),
                                             Arrivals(CountReports(request.database, period), period)}),
                              trend.Show()}) +
               ProductList(request, period).Show();
    if (request.IsEditor())
        content += NewProductForm();
    content +=
        Html::Element("h2", {}, "Newest reports") +
        ReportsTable(request.database, "The last five; all of them are under Reports", newest, NoReportsYet);
    return Page(request, "Overview", content);
}

}  // namespace kel::server
