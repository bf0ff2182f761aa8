#include "server/admin/ValueCondition.h"

#include <fmt/format.h>
#include <algorithm>

namespace kel::server {

ValueCondition ValueCondition::Read(const AdminRequest& request, std::string& problem)
{
    const std::string of = request.Query("of");
    ValueCondition condition{0, request.Query("comparison"), request.Query("text"), of == "any"};
    const std::string id = request.Query("value"), outcome = request.Query("outcome");
    if (id.empty()) {
        if (!condition.comparison.empty() && !condition.text.empty())
            problem = "A comparison belongs to a value: fill in its id, too.";
        return {};
    }
    const std::int64_t number = WholeNumber(id);
    const Comparison* comparison = ParseComparison(condition.comparison);
    if (number < 1 || number > INT32_MAX)
        problem = "'value' has to be the id of a value.";
    else if (!of.empty() && !condition.ofAny)
        problem = "'of' has to be any.";
    else if (!outcome.empty() && !ParseResult(outcome))
        problem = "'outcome' has to be pass, fail or unknown.";
    else if (!comparison)
        problem = "'comparison' has to be a comparison of requirements, such as at least or contains.";
    else if (const auto reason = comparison->unsatisfiableReason(condition.text); !reason.empty())
        problem = fmt::format("No value could meet this: '{}' {}.", comparison->name, reason);
    else
        condition.id = static_cast<int>(number);
    condition.outcome = ParseResult(outcome).value_or(Result::Pass);
    return condition;
}

std::optional<ValueCondition> ValueCondition::OfLine(const Requirement& line, Result outcome)
{
    if (line.anyOf.size() != 1 || line.anyOf.front().allOf.size() != 1)
        return std::nullopt;
    const Condition& only = line.anyOf.front().allOf.front();
    if (only.needed.size() > MaxLinkedBytes)
        return std::nullopt;
    return ValueCondition{only.group, std::string(only.comparison->name), only.needed,
                          line.anyOf.front().ofAny, outcome};
}

bool ValueCondition::Holds(const Report& report) const
{
    const Comparison* by = ParseComparison(comparison);
    if (!by)
        return false;
    if (outcome != Result::Pass) {
        Requirements line;
        line.lines.push_back({{}, {{{{id, by, NormalizeValue(text)}}, ofAny, {}}}, {}, {}, false});
        return JudgeResults(line, report.Lookup()).lines.front() == outcome;
    }
    const CatalogueValue* known = FindCatalogueValue(id);
    const std::string needed = NormalizeValue(text);
    const auto devices = ofAny ? report.Devices(id) : report.Devices(id, 1);
    return std::any_of(devices.begin(), devices.end(), [&](const std::string* value) {
        return Compare(*by, NormalizeValue(*value), needed, known ? known->soldAs : SoldAs::Nothing) ==
               Result::Pass;
    });
}

}  // namespace kel::server
