#include "server/verdict/Requirements.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "server/report/Report.h"

namespace kel::server {

namespace {

using nlohmann::json;

std::string TextOf(const json& entry, const char* name)
{
    const auto found = entry.find(name);
    if (found == entry.end())
        return {};
    return found->is_string() ? found->get<std::string>() : found->dump();  // "needed": 2 is as good as "2"
}

Requirement LineOf(const json& entry)
{
    Requirement line;
    const json& id = entry.at("id");
    if (!id.is_number_integer())
        throw std::runtime_error("its id is no whole number");
    line.group = id.get<int>();
    line.label = entry.at("label").get<std::string>();
    const std::string name = entry.at("comparison").get<std::string>();
    const auto comparison = ComparisonOf(name);
    if (!comparison)
        throw std::runtime_error("'" + name + "' is no comparison");
    line.comparison = *comparison;
    line.needed = TextOf(entry, "needed");
    line.advice = TextOf(entry, "advice");
    const std::string why = WhyNeverMet(line.comparison, line.needed);
    if (!why.empty())
        throw std::runtime_error("'" + name + "' " + why + ", not '" + line.needed + "'");
    return line;
}

}  // namespace

Requirements Requirements::Read(std::string_view text)
{
    Requirements requirements;
    const json content = json::parse(text);
    requirements.title = content.at("title").get<std::string>();
    const json& entries = content.at("requirements");
    if (!entries.is_array())
        throw std::runtime_error("the requirements are no list");
    for (const json& entry : entries) {
        try {
            requirements.lines.push_back(LineOf(entry));
        } catch (const std::exception& error) {
            throw std::runtime_error("requirement " + std::to_string(requirements.lines.size() + 1) + ": " +
                                     error.what());
        }
    }
    return requirements;
}

std::vector<int> Requirements::Groups() const
{
    std::vector<int> groups{Report::Session, Report::Referrer, Report::User};
    for (const Requirement& line : lines) {
        if (std::find(groups.begin(), groups.end(), line.group) == groups.end())
            groups.push_back(line.group);
    }
    return groups;
}

}  // namespace kel::server
