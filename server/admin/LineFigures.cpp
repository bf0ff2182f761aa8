#include "server/admin/LineFigures.h"

#include <fmt/format.h>
#include <algorithm>

#include "server/admin/Layout.h"
#include "server/admin/ValueNames.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "server/store/RequirementSets.h"

namespace kel::server {

namespace {

/// The names of the values that a line asks for, each once.
std::string NamesOfValues(const Requirement& line)
{
    std::string values;
    for (const int group : line.Groups()) {
        const std::string id = std::to_string(group), name = NameOfValue(id);
        values += (values.empty() ? "" : ", ") + (name.empty() ? id : name);
    }
    return values;
}

/// The sessions that do not meet a line: for a visitor, unknown is as bad as fail.
int Unmet(const Counts& count)
{
    return count.fail + count.unknown;
}

/// The places of the recommendations, or of the other lines, in descending order of sessions that do not meet
/// them.
std::vector<std::size_t> SortedPlaces(const Requirements& requirements, const std::vector<Counts>& counts,
                                      bool recommended)
{
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < requirements.lines.size() && i < counts.size(); ++i) {
        if (requirements.lines[i].recommended == recommended)
            places.push_back(i);
    }
    std::stable_sort(places.begin(), places.end(), [&](std::size_t left, std::size_t right) {
        return std::pair(Unmet(counts[left]), counts[left].fail) >
               std::pair(Unmet(counts[right]), counts[right].fail);
    });
    return places;
}

}  // namespace

LineFigures::LineFigures(Database& database, const VersionCount& version, const ReportQuery& query)
    : version(version),
      query(query.OfVersion(version.version)),
      requirements(Requirements::ReadStored(RequirementSets(database).Text(version.set))),
      counts(DayCounts(database).Lines(version.set, query.period.Range()))
{
    if (!requirements)
        return;
    lines = SortedPlaces(*requirements, counts, false);
    recommendations = SortedPlaces(*requirements, counts, true);
}

Html LineFigures::Sentence() const
{
    if (lines.empty() || Unmet(counts[lines.front()]) == 0)
        return {};
    const std::size_t place = lines.front();
    const Counts& count = counts[place];
    const int line = static_cast<int>(place) + 1;
    return Html::Element(
        "p", {},
        {"What stops most of the others: ", Html::Stored(requirements->lines[place].label.Default()),
         ", which ", CountLink(query.WithLine(line, "fail"), count.fail), " fail and ",
         CountLink(query.WithLine(line, "unknown"), count.unknown),
         fmt::format(" leave unknown, by version {}.", version.version)});
}

Html LineFigures::LineTable(const std::string& caption, const std::string& kind,
                            const std::vector<std::size_t>& places) const
{
    Table table(
        caption,
        {{kind}, {"Value"}, {"Needed"}, {"Fail", true}, {"Unknown", true}, {"Pass", true}, {"Not met", true}},
        "dense");
    for (const std::size_t place : places) {
        const Requirement& line = requirements->lines[place];
        const Counts& count = counts[place];
        const auto link = [&](const char* result, int number) {
            return CountLink(query.WithLine(static_cast<int>(place) + 1, result), number);
        };
        table.Add({LineLabel(line.label.Default(), line.recommended), NamesOfValues(line),
                   Html::Stored(line.Needed()), link("fail", count.fail), link("unknown", count.unknown),
                   link("pass", count.pass), Percentage(Unmet(count), Unmet(count) + count.pass)});
    }
    return table.Done("None.");
}

Html LineFigures::Tables() const
{
    if (!requirements) {
        return Notice("bad", fmt::format("The requirements of version {} cannot be read by this program.",
                                         version.version));
    }
    Html tables =
        LineTable(fmt::format("Requirements of version {}; those first that most sessions do not meet",
                              version.version),
                  "Requirement", lines);
    if (!recommendations.empty())
        tables += LineTable(
            fmt::format("Recommendations of version {}; they do not affect the result", version.version),
            "Recommendation", recommendations);
    return tables;
}

}  // namespace kel::server
