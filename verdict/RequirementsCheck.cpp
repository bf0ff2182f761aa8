#include "verdict/RequirementsCheck.h"

#include <algorithm>
#include <functional>

#include "verdict/ConditionCheck.h"

namespace kel {

namespace {

std::string WithLine(int line, const std::string& reason)
{
    const bool hasLine = line > 0 && !reason.starts_with("parse error");
    const bool isEntry = reason.starts_with("requirement ") || reason.starts_with("page ");
    return hasLine ? "line " + std::to_string(line) + (isEntry ? ", " : ": ") + reason : reason;
}

/// Finds what is wrong with lines that could be read.
class Checker {
public:
    Checker(std::string_view source, CheckedRequirements& result) : text(source), checked(result) {}

    void CheckLines()
    {
        const auto& lines = checked.requirements.lines;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            for (std::size_t j = 0; j < lines[i].anyOf.size(); ++j)
                CheckAlternative(lines[i].anyOf[j], {i, j, 0});
            CheckAlternatives(lines[i], i);
            CheckAgainstEarlier(i);
        }
    }

private:
    void Add(bool isError, const ConditionPlace& place, const std::string& name, const std::string& reason)
    {
        int& left = isError ? errorsLeft : warningsLeft;
        if (left-- > 0)
            checked.findings.push_back(MakeFinding(text, isError, place, name, reason));
    }

    void CheckAlternative(const Alternative& alternative, ConditionPlace place)
    {
        for (std::size_t k = 0; k < alternative.allOf.size(); ++k) {
            place.condition = k;
            const Condition& condition = alternative.allOf[k];
            if (const ConditionFault error = FindError(condition); !error.reason.empty()) {
                Add(true, place, error.name, error.reason);
                continue;
            }
            if (const ConditionFault doubt = FindDoubt(condition); !doubt.reason.empty())
                Add(false, place, doubt.name, doubt.reason);
            for (std::size_t earlier = 0; earlier < k; ++earlier) {
                if (AreExclusive(condition, alternative.allOf[earlier]))
                    Add(true, place, "id",
                        "it can never hold together with condition " + std::to_string(earlier + 1));
            }
        }
        if (alternative.ofAny && alternative.allOf.size() == 1) {
            const CatalogueValue* value = FindCatalogueValue(alternative.allOf.front().group);
            if (value && !value->hasIndexes)
                Add(false, place, "of",
                    std::to_string(value->id) + " (" + value->Name() +
                        ") has one value, so that \"of\": \"any\" has no effect");
        }
    }

    /// Two ways of which one is always open.
    void CheckAlternatives(const Requirement& line, std::size_t number)
    {
        for (std::size_t j = 1; j < line.anyOf.size(); ++j) {
            for (std::size_t earlier = 0; earlier < j; ++earlier) {
                const Alternative &one = line.anyOf[earlier], &other = line.anyOf[j];
                if (one.allOf.size() == 1 && other.allOf.size() == 1 && !one.ofAny && !other.ofAny &&
                    CoverAll(one.allOf.front(), other.allOf.front()))
                    Add(true, {number, j, 0}, "id",
                        "together with alternative " + std::to_string(earlier + 1) + " it always holds");
            }
        }
    }

    /// Plain lines that ask for the same value as one before.
    void CheckAgainstEarlier(std::size_t number)
    {
        const auto& lines = checked.requirements.lines;
        const Condition* condition = PlainCondition(lines[number]);
        for (std::size_t i = 0; condition && i < number; ++i) {
            const Condition* earlier = PlainCondition(lines[i]);
            if (!earlier || earlier->group != condition->group ||
                lines[i].recommended != lines[number].recommended)
                continue;
            if (AreExclusive(*earlier, *condition)) {
                Add(true, {number, 0, 0}, "id",
                    "no machine can meet it together with requirement " + std::to_string(i + 1));
            } else if (earlier->comparison == condition->comparison) {
                Add(false, {number, 0, 0}, "id",
                    "requirement " + std::to_string(i + 1) + " asks for " + std::to_string(earlier->group) +
                        " in the same way");
            }
        }
    }

    static const Condition* PlainCondition(const Requirement& line)
    {
        const bool isPlain =
            line.anyOf.size() == 1 && !line.anyOf[0].ofAny && line.anyOf[0].allOf.size() == 1;
        return isPlain ? &line.anyOf[0].allOf[0] : nullptr;
    }

    std::string_view text;
    CheckedRequirements& checked;
    int errorsLeft = CheckedRequirements::MaxFindings, warningsLeft = CheckedRequirements::MaxFindings;
};

}  // namespace

std::string CheckedRequirements::ErrorText() const
{
    const auto isError = [](const Finding& finding) { return finding.isError; };
    const auto count = std::count_if(findings.begin(), findings.end(), isError);
    if (count == 0)
        return {};
    const std::string first = std::find_if(findings.begin(), findings.end(), isError)->text;
    return count == 1 ? first : first + " (further errors: " + std::to_string(count - 1) + ")";
}

CheckedRequirements CheckRequirements(std::string_view text)
{
    CheckedRequirements checked;
    std::vector<RequirementsError> errors;
    checked.requirements = Requirements::ReadPartly(text, errors);
    for (const RequirementsError& error : errors) {
        if (checked.findings.size() == static_cast<std::size_t>(CheckedRequirements::MaxFindings))
            break;
        const int line = error.line > 0       ? error.line
                         : error.path.empty() ? 0
                                              : FindJsonPlace(text, error.path).line;
        checked.findings.push_back({true, line, WithLine(line, error.what())});
    }
    const bool isJson = errors.empty() || !errors.front().path.empty();
    if (const auto repeated = isJson ? FindRepeatedName(text) : std::nullopt)
        checked.findings.push_back(
            {true, repeated->line,
             WithLine(repeated->line, "the name '" + repeated->name + "' occurs twice")});
    Checker(text, checked).CheckLines();
    std::stable_sort(checked.findings.begin(), checked.findings.end(),
                     [](const Finding& one, const Finding& other) { return one.line < other.line; });
    return checked;
}

Requirements ReadChecked(std::string_view text)
{
    CheckedRequirements checked = CheckRequirements(text);
    if (const std::string error = checked.ErrorText(); !error.empty())
        throw RequirementsError(error);
    return std::move(checked.requirements);
}

Finding MakeFinding(std::string_view text, bool isError, const ConditionPlace& place, const std::string& name,
                    const std::string& reason)
{
    const auto way = [&](bool isAlternative, bool isCondition) {
        JsonPath path{"requirements", std::to_string(place.line)};
        if (isAlternative)
            path.insert(path.end(), {"any of", std::to_string(place.alternative)});
        if (isCondition)
            path.insert(path.end(), {"all of", std::to_string(place.condition)});
        return path;
    };
    // How deep a condition lies depends on whether its line has alternatives, and its alternative conditions.
    const bool hasAlternatives = FindJsonPlace(text, way(true, false)).isFound;
    const bool hasConditions = hasAlternatives && FindJsonPlace(text, way(true, true)).isFound;
    JsonPath path = way(hasAlternatives, hasConditions);
    path.push_back(name);
    const int line = FindJsonPlace(text, path).line;
    std::string where = "requirement " + std::to_string(place.line + 1) + ": ";
    if (hasAlternatives)
        where += "alternative " + std::to_string(place.alternative + 1) + ": ";
    if (hasConditions)
        where += "condition " + std::to_string(place.condition + 1) + ": ";
    return {isError, line, WithLine(line, where + reason)};
}

}  // namespace kel
