#include "server/admin/LineFigures.h"

#include <fmt/format.h>
#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "server/admin/Layout.h"
#include "server/admin/ValueNames.h"
#include "server/admin/kit/Table.h"
#include "server/admin/kit/Texts.h"
#include "server/store/RequirementSets.h"
#include "verdict/Requirements.h"

namespace kel::server {

namespace {

constexpr int MaxVersions = 3;  // that a page shows

Result ResultIn(const nlohmann::json& line)
{
    const auto found = line.is_object() ? line.find("result") : line.end();
    if (found == line.end() || !found->is_string())
        return Result::Unknown;
    return ParseResult(found->get_ref<const std::string&>()).value_or(Result::Unknown);
}

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

/// The places of the recommendations, or of the other lines, in descending order of failures.
std::vector<std::size_t> SortedPlaces(const Requirements& requirements, const std::vector<Counts>& counts,
                                      bool recommended)
{
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < requirements.lines.size() && i < counts.size(); ++i) {
        if (requirements.lines[i].recommended == recommended)
            places.push_back(i);
    }
    std::stable_sort(places.begin(), places.end(), [&](std::size_t left, std::size_t right) {
        return std::pair(counts[left].fail, counts[left].unknown) >
               std::pair(counts[right].fail, counts[right].unknown);
    });
    return places;
}

Html LineTable(const std::string& caption, const std::string& kind, const Requirements& requirements,
               const std::vector<Counts>& counts, const std::vector<std::size_t>& places)
{
    Table table(caption, {{kind},
                          {"Value"},
                          {"Needed"},
                          {"Fail", true},
                          {"Unknown", true},
                          {"Pass", true},
                          {"Failing", true}});
    for (const std::size_t place : places) {
        const Requirement& line = requirements.lines[place];
        const Counts& count = counts[place];
        table.Add({LineLabel(line.label.Default(), line.recommended), NamesOfValues(line),
                   Html::Stored(line.Needed()), Grouped(count.fail), Grouped(count.unknown),
                   Grouped(count.pass), Percentage(count.fail, count.fail + count.unknown + count.pass)});
    }
    return table.Done("None.");
}

}  // namespace

void LineFigures::Add(const StoredVerdict& verdict)
{
    Version& version = versions[verdict.set];
    version.number = verdict.version;
    ++version.sessions;
    const auto lines = nlohmann::json::parse(verdict.lines, nullptr, false);
    if (!lines.is_array())
        return;
    version.lines.resize(std::max(version.lines.size(), lines.size()));
    for (std::size_t i = 0; i < lines.size(); ++i)
        version.lines[i].Add(ResultIn(lines[i]));
}

Html LineFigures::Show(Database& database) const
{
    Html figures;
    int shown = 0, left = 0;
    for (auto version = versions.rbegin(); version != versions.rend(); ++version) {
        const auto& [set, counted] = *version;
        if (++shown > MaxVersions) {
            left += counted.sessions;
            continue;
        }
        const std::string of =
            fmt::format("version {}, which judged {} of them", counted.number, Grouped(counted.sessions));
        const auto requirements = Requirements::ReadStored(RequirementSets(database).Text(set));
        if (!requirements) {
            figures +=
                Notice("bad", fmt::format("The requirements of version {} cannot be read by this program.",
                                          counted.number));
            continue;
        }
        const auto lines = SortedPlaces(*requirements, counted.lines, false);
        const auto recommendations = SortedPlaces(*requirements, counted.lines, true);
        figures += LineTable(fmt::format("Requirements of {}; those that fail most first", of), "Requirement",
                             *requirements, counted.lines, lines);
        if (!recommendations.empty())
            figures += LineTable(fmt::format("Recommendations of {}; they do not affect the result", of),
                                 "Recommendation", *requirements, counted.lines, recommendations);
    }
    if (left > 0)
        figures += Html::Element("p", {}, fmt::format("Older versions judged {} of them.", Grouped(left)));
    return figures;
}

}  // namespace kel::server
