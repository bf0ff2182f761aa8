#include "server/admin/ProductPage.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "server/admin/Chart.h"
#include "server/admin/Layout.h"
#include "server/admin/Recent.h"
#include "server/admin/Table.h"
#include "server/admin/Texts.h"
#include "server/admin/Trial.h"
#include "server/admin/ValueNames.h"
#include "server/base/Text.h"

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

Html FiguresOf(const Totals& totals)
{
    const int all = totals.pass + totals.fail + totals.unknown;
    return Html::Element("div", {{"class", "card figures"}},
                         {Figure("sessions", Grouped(all)), Figure("pass", Grouped(totals.pass)),
                          Figure("fail", Grouped(totals.fail)), Figure("unknown", Grouped(totals.unknown)),
                          Figure("passing", Percentage(totals.pass, all))});
}

void Count(Totals& totals, const std::string& result)
{
    ++(result == "pass" ? totals.pass : result == "fail" ? totals.fail : totals.unknown);
}

/// The labels of the newest requirements by the ids of their values; a line of an old version may have none.
std::map<int, std::string> LabelsOf(Store& store, const std::string& referrer)
{
    std::map<int, std::string> labels;
    if (const auto requirements = NewestRequirements(store, referrer)) {
        for (const VerdictLine& line : Judge(*requirements, Report()).lines)
            labels.emplace(line.group, line.label);
    }
    return labels;
}

}  // namespace

const std::string& ReferrerIn(const Visit& visit)
{
    if (!IsReferrer(visit.subject))
        throw Fault(404, "There is no such product.");
    return visit.subject;
}

Html ProductPage::FailuresOf(const std::string& referrer) const
{
    std::map<int, Totals> counts;
    const RecentSessions recent = ForEachRecentVerdict(store, referrer, [&](const StoredVerdict& verdict) {
        const auto lines = nlohmann::json::parse(verdict.lines, nullptr, false);
        for (const auto& line : lines.is_array() ? lines : nlohmann::json::array())
            Count(counts[line.value("id", 0)], line.value("result", ""));
    });
    std::vector<std::pair<int, Totals>> rows(counts.begin(), counts.end());
    std::stable_sort(rows.begin(), rows.end(), [](const auto& left, const auto& right) {
        return std::pair(left.second.fail, left.second.unknown) >
               std::pair(right.second.fail, right.second.unknown);
    });
    const auto labels = LabelsOf(store, referrer);
    Table table(
        "Requirements of " + recent.Text() + ", those that fail most first",
        {{"Requirement"}, {"Value"}, {"Fail", true}, {"Unknown", true}, {"Pass", true}, {"Failing", true}});
    for (const auto& [id, totals] : rows) {
        const auto label = labels.find(id);
        const std::string name = NameOfValue(std::to_string(id));
        table.Add({label == labels.end() ? Html("no longer asked") : Html::Stored(label->second),
                   name.empty() ? std::to_string(id) : name, Grouped(totals.fail), Grouped(totals.unknown),
                   Grouped(totals.pass),
                   Percentage(totals.fail, totals.fail + totals.unknown + totals.pass)});
    }
    return table.Done("There is no verdict yet.");
}

Html ProductPage::MachinesOf(const std::string& referrer) const
{
    std::vector<Distribution> distributions;
    for (const Picture& picture : Pictures)
        distributions.emplace_back(picture.kind);
    const RecentSessions recent = ForEachRecentReport(store, referrer, [&](const Report& report) {
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
                             ". A report has what the requirements ask for; the rest is not told.") +
           Html::Element("div", {{"class", "charts"}}, charts);
}

Answer ProductPage::Show(const Visit& visit) const
{
    const std::string& referrer = ReferrerIn(visit);
    const Totals totals = store.RecentTotals(referrer, RecentCount);
    const Html content = Html::Element("p", {{"class", "buttons"}},
                                       {ButtonLink(ProductPath(referrer) + "/requirements", "Requirements"),
                                        ButtonLink("/reports?referrer=" + UrlEncode(referrer), "Reports")}) +
                         Html::Element("h2", {}, "The last verdicts") + FiguresOf(totals) +
                         FailuresOf(referrer) + Html::Element("h2", {}, "What visitors have") +
                         MachinesOf(referrer);
    return Page(visit, referrer, content);
}

}  // namespace kel::server
