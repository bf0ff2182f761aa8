#include "server/admin/MachineCharts.h"

#include <fmt/format.h>
#include <algorithm>
#include <charconv>
#include <map>
#include <numeric>

#include "server/admin/Layout.h"
#include "server/admin/ValueChart.h"
#include "server/admin/ValueNames.h"
#include "server/admin/figures/Recent.h"
#include "server/admin/kit/Texts.h"
#include "server/store/DayCounts.h"
#include "server/store/RequirementSets.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

// Memory, logical processors, graphics memory, resolution of the primary display, system.
constexpr int UsualValues[] = {71063, 71254, 72004, 72402, 71060};
constexpr int Identifiers[] = {Report::Session, Report::Referrer, Report::User, Report::Machine};
constexpr std::size_t MaxCharts = 8;
constexpr std::size_t MaxUnknownChoices = 500;  // of the form: ids that are not in the catalogue

bool IsIdentifier(int id)
{
    return std::find(std::begin(Identifiers), std::end(Identifiers), id) != std::end(Identifiers);
}

/// What the newest requirements ask for.
struct Asked {
    std::map<int, std::vector<AskedValue>> conditions;  // by value
    std::vector<int> ids;  // first those of the lines that most sessions do not meet
};

Asked FindAsked(Database& database, const ReportQuery& sessions)
{
    Asked asked;
    const auto newest = RequirementSets(database).NewestForPage(sessions.referrer);
    const auto read =
        newest ? Requirements::ReadStored(RequirementSets(database).Text(newest->id)) : std::nullopt;
    if (!read)
        return asked;
    for (const Requirement& line : read->lines) {
        for (const Alternative& alternative : line.anyOf) {
            for (const Condition& condition : alternative.allOf)
                asked.conditions[condition.group].push_back(
                    {condition, line.label.Default(), alternative.ofAny});
        }
    }
    std::vector<Counts> counts = DayCounts(database).Lines(newest->id, sessions.period.Range());
    counts.resize(read->lines.size());
    std::vector<std::size_t> places(read->lines.size());
    std::iota(places.begin(), places.end(), 0);
    std::stable_sort(places.begin(), places.end(), [&](std::size_t left, std::size_t right) {
        return counts[left].fail + counts[left].unknown > counts[right].fail + counts[right].unknown;
    });
    for (const std::size_t place : places) {
        for (const int id : read->lines[place].Groups())
            asked.ids.push_back(id);
    }
    return asked;
}

std::vector<int> ChartedValues(const std::vector<int>& asked, int chosen)
{
    std::vector<int> ids;
    const auto add = [&](int id) {
        if (ids.size() < MaxCharts && !IsIdentifier(id) && std::find(ids.begin(), ids.end(), id) == ids.end())
            ids.push_back(id);
    };
    if (chosen > 0)
        add(chosen);
    std::for_each(asked.begin(), asked.end(), add);
    std::for_each(std::begin(UsualValues), std::end(UsualValues), add);
    return ids;
}

/// How many sessions report each value; an empty text is none.
class Choices {
public:
    void Count(const Report& report)
    {
        int last = 0;
        for (const auto& [key, value] : report.All()) {
            int id = 0;
            const char* end = key.first.data() + key.first.size();
            const auto read = std::from_chars(key.first.data(), end, id);
            if (read.ec != std::errc() || read.ptr != end || id == last || Trim(value).empty() ||
                IsIdentifier(id) || !IsOffered(id))
                continue;
            ++counts[id];
            last = id;
        }
    }

    Html Form(const ReportQuery& sessions, int chosen) const
    {
        Html options;
        for (const auto& [id, count] : counts) {
            const std::string number = std::to_string(id), name = NameOfValue(number);
            Html::Attributes attributes{{"value", number}};
            if (id == chosen)
                attributes.emplace_back("selected", "");
            options += Html::Element(
                "option", attributes,
                fmt::format("{}{} ({})", name, name.empty() ? number : ", " + number, Grouped(count)));
        }
        const Html select =
            Html::Element("div", {{"class", "field"}},
                          {Html::Element("label", {{"for", "value"}}, "Another value that they report"),
                           Html::Element("select", {{"id", "value"}, {"name", "value"}}, options)});
        return Html::Element(
            "form",
            {{"method", "get"}, {"action", ProductPath(sessions.referrer) + "#values"}, {"class", "filter"}},
            {sessions.period.HiddenFields(), select,
             Html::Element("div", {{"class", "field"}}, Button("Show", "plain"))});
    }

private:
    /// A report can name thousands of ids that mean nothing, which may not displace those of the catalogue.
    bool IsOffered(int id)
    {
        return counts.contains(id) || FindCatalogueValue(id) || unknown++ < MaxUnknownChoices;
    }

    std::map<int, int> counts;
    std::size_t unknown = 0;
};

}  // namespace

Html MachineCharts(Database& database, const ReportQuery& sessions, int all, int chosen)
{
    auto [asked, ids] = FindAsked(database, sessions);
    std::vector<ValueSample> samples;
    for (const int id : ChartedValues(ids, chosen)) {
        const auto lines = asked.find(id);
        samples.emplace_back(
            id, lines != asked.end() && std::any_of(lines->second.begin(), lines->second.end(),
                                                    [](const AskedValue& one) { return one.ofAny; }));
    }
    Choices choices;
    const RecentSessions recent = ForEachRecentReport(database, sessions.Filter(), [&](const Report& report) {
        choices.Count(report);
        for (ValueSample& sample : samples)
            sample.Add(report);
    });
    if (recent.count == 0)
        return Html::Element("p", {{"class", "empty"}},
                             "The reports of these sessions are no longer stored.");
    Html charts;
    for (const ValueSample& sample : samples) {
        if (sample.Reported() > 0 || sample.Id() == chosen || asked.contains(sample.Id()))
            charts += ValueChart(sample, asked[sample.Id()], sessions);
    }
    const std::string of = recent.count == all
                               ? "these sessions"
                               : fmt::format(
                                     "{} of these {} sessions, the newest with a readable report; "
                                     "their links lead to all sessions of the period",
                                     Grouped(recent.count), Grouped(all));
    return Html::Element(
               "p", {{"class", "lead"}},
               fmt::format("The charts are of {}. A report has only the values that the requirements "
                           "ask for.",
                           of)) +
           choices.Form(sessions, chosen) + Html::Element("div", {{"class", "charts"}}, charts);
}

}  // namespace kel::server
