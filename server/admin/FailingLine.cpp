#include "server/admin/FailingLine.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "server/store/RequirementSets.h"
#include "verdict/Requirements.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

Result ResultIn(const nlohmann::json& line)
{
    const auto found = line.is_object() ? line.find("result") : line.end();
    if (found == line.end() || !found->is_string())
        return Result::Unknown;
    return ParseResult(found->get_ref<const std::string&>()).value_or(Result::Unknown);
}

/// The places of the lines that have this label, which is in lower case.
std::vector<std::size_t> PlacesOf(const std::string& label, const std::string& requirements)
{
    std::vector<std::size_t> places;
    const auto read = Requirements::ReadStored(requirements);
    for (std::size_t i = 0; read && i < read->lines.size(); ++i) {
        if (Lower(Trim(read->lines[i].label)) == label)
            places.push_back(i);
    }
    return places;
}

}  // namespace

std::vector<Result> ResultsOfLines(const StoredVerdict& verdict)
{
    std::vector<Result> results;
    const auto lines = nlohmann::json::parse(verdict.lines, nullptr, false);
    if (lines.is_array()) {
        for (const auto& line : lines)
            results.push_back(ResultIn(line));
    }
    return results;
}

FailingReports FailingReports::Find(Database& database, const std::string& referrer, const std::string& label)
{
    FailingReports found;
    std::map<std::int64_t, std::vector<std::size_t>> places;  // of the lines, by the set
    const std::string wanted = Lower(Trim(label));
    found.searched = ForEachRecentVerdict(database, referrer, [&](const StoredVerdict& verdict) {
        const auto [inSet, isNew] = places.emplace(verdict.set, std::vector<std::size_t>());
        if (isNew)
            inSet->second = PlacesOf(wanted, RequirementSets(database).Text(verdict.set));
        const std::vector<Result> results = ResultsOfLines(verdict);
        const bool fails = std::any_of(inSet->second.begin(), inSet->second.end(), [&](std::size_t place) {
            return place < results.size() && results[place] == Result::Fail;
        });
        if (fails)
            found.ids.push_back(verdict.report);
    });
    return found;
}

}  // namespace kel::server
