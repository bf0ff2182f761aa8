#include "server/admin/Layout.h"
#include "server/admin/LineFigures.h"
#include "server/admin/Pages.h"
#include "server/admin/figures/Chart.h"
#include "server/admin/figures/Recent.h"
#include "server/admin/kit/Texts.h"

namespace kel::server {

namespace {

struct Picture {
    int id;
    const char* title;
    Distribution::Kind kind;
};

constexpr Picture Pictures[] = {{71063, "Memory", Distribution::Kind::Bytes},
                                {71254, "Logical processors", Distribution::Kind::Number},
                                {72004, "Graphics memory", Distribution::Kind::Bytes},
                                {72402, "Resolution of the primary display", Distribution::Kind::Text},
                                {71060, "System", Distribution::Kind::Text}};

Html Figure(const std::string& name, const std::string& value)
{
    return Html::Element("div", {}, {Html::Element("b", {}, value), name});
}

Html TotalFigures(const Counts& totals)
{
    const int all = totals.pass + totals.fail + totals.unknown;
    return Html::Element("div", {{"class", "card figures"}},
                         {Figure("sessions", Grouped(all)), Figure("pass", Grouped(totals.pass)),
                          Figure("fail", Grouped(totals.fail)), Figure("unknown", Grouped(totals.unknown)),
                          Figure("passing", Percentage(totals.pass, all))});
}

Html LineTables(Database& database, const std::string& referrer)
{
    LineFigures figures;
    const RecentSessions recent =
        ForEachRecentVerdict(database, referrer, [&](const StoredVerdict& verdict) { figures.Add(verdict); });
    if (recent.count == 0)
        return Html::Element("p", {{"class", "empty"}}, "There is no verdict yet.");
    return Html::Element("p", {{"class", "lead"}}, "The tables are of " + recent.Text() + ".") +
           figures.Show(database);
}

Html MachineCharts(Database& database, const std::string& referrer)
{
    std::vector<Distribution> distributions;
    for (const Picture& picture : Pictures)
        distributions.emplace_back(picture.kind);
    const RecentSessions recent = ForEachRecentReport(database, referrer, [&](const Report& report) {
        for (std::size_t i = 0; i < distributions.size(); ++i)
            distributions[i].Add(report.Value(Pictures[i].id));
    });
    if (recent.count == 0)
        return Html::Element("p", {{"class", "empty"}}, "No report names this product yet.");
    Html charts;
    for (std::size_t i = 0; i < distributions.size(); ++i)
        charts += Chart(Pictures[i].title, distributions[i].Bars());
    return Html::Element("p", {{"class", "lead"}},
                         "The charts are of " + recent.Text() +
                             ". A report has only the values that the requirements ask for; the others are "
                             "not reported.") +
           Html::Element("div", {{"class", "charts"}}, charts);
}

}  // namespace

Answer ShowProduct(const AdminRequest& request)
{
    const std::string& referrer = request.Referrer();
    const Counts totals = Verdicts(request.database).CountRecent({referrer}, RecentCount).front();
    const Html content = Html::Element("p", {{"class", "buttons"}},
                                       {ButtonLink(RequirementsPath(referrer), "Requirements"),
                                        ButtonLink("/reports?referrer=" + UrlEncode(referrer), "Reports")}) +
                         Html::Element("h2", {}, "The last verdicts") + TotalFigures(totals) +
                         LineTables(request.database, referrer) +
                         Html::Element("h2", {}, "What visitors have") +
                         MachineCharts(request.database, referrer);
    return Page(request, referrer, content);
}

}  // namespace kel::server
