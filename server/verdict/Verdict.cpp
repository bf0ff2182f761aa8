#include "server/verdict/Verdict.h"

#include <algorithm>

#include "server/base/Text.h"

namespace kel::server {

namespace {

/// What is told for a value that is not known, beside others that are.
constexpr const char* Nothing = "–";

Result TotalOf(const std::vector<VerdictLine>& lines)
{
    const auto has = [&](Result result) {
        return std::any_of(lines.begin(), lines.end(), [=](const VerdictLine& line) {
            return !line.recommended && line.result == result;
        });
    };
    if (has(Result::Fail))
        return Result::Fail;
    return has(Result::Pass) && !has(Result::Unknown) ? Result::Pass : Result::Unknown;
}

Result AnyOf(const std::vector<VerdictPart>& parts)
{
    const auto has = [&](Result result) {
        return std::any_of(parts.begin(), parts.end(),
                           [=](const VerdictPart& part) { return part.result == result; });
    };
    return has(Result::Pass) ? Result::Pass : has(Result::Unknown) ? Result::Unknown : Result::Fail;
}

/// The values of the parts, each group's once: "4.0 GB; 12.1".
std::string FoundIn(const std::vector<VerdictPart>& parts)
{
    std::string found;
    std::vector<int> told;
    bool isKnown = false;
    for (const VerdictPart& part : parts) {
        if (std::find(told.begin(), told.end(), part.group) != told.end())
            continue;
        if (!told.empty())
            found += "; ";
        told.push_back(part.group);
        isKnown = isKnown || !part.found.empty();
        found += part.found.empty() && parts.size() > 1 ? Nothing : part.found;
    }
    return isKnown ? found : std::string();
}

VerdictLine JudgeLine(const Requirement& requirement, const Report& report)
{
    VerdictLine line;
    for (const Condition& condition : requirement.anyOf)
        line.parts.push_back(
            {condition.group, condition.Text(),
             Shortened(report.Text(condition.group), Verdict::LongestFound),
             Compare(condition.comparison, report.Value(condition.group), condition.needed)});
    line.group = requirement.anyOf.front().group;
    line.label = requirement.label;
    line.needed = requirement.Needed();
    line.found = FoundIn(line.parts);
    line.result = AnyOf(line.parts);
    line.advice = requirement.advice;
    line.recommended = requirement.recommended;
    return line;
}

}  // namespace

Verdict Judge(const Requirements& requirements, const Report& report)
{
    Verdict verdict;
    verdict.title = requirements.title;
    for (const Requirement& line : requirements.lines)
        verdict.lines.push_back(JudgeLine(line, report));
    verdict.total = TotalOf(verdict.lines);
    return verdict;
}

}  // namespace kel::server
