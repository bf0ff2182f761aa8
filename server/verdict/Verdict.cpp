#include "server/verdict/Verdict.h"

#include <algorithm>
#include <unordered_map>

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

/// A report's values as they are needed. Many conditions may ask for one, which is made ready once.
class Values {
public:
    struct Value {
        std::string comparable, shown;
    };

    explicit Values(const Report& report) : report(report) {}

    const Value& Get(int group)
    {
        const auto found = values.find(group);
        if (found != values.end())
            return found->second;
        return values
            .emplace(group, Value{Comparable(report.Value(group)),
                                  Shortened(report.Text(group), Verdict::LongestFound)})
            .first->second;
    }

    /// What a line shows of the value, as long as there is room.
    std::string Show(const Value& value)
    {
        std::string shown = Shortened(value.shown, room);
        room -= std::min(room, shown.size());
        return shown;
    }

private:
    const Report& report;
    std::unordered_map<int, Value> values;
    std::size_t room = Verdict::MaxFoundTotal;
};

VerdictLine JudgeLine(const Requirement& requirement, Values& values)
{
    VerdictLine line;
    for (const Condition& condition : requirement.anyOf) {
        const Values::Value& value = values.Get(condition.group);
        line.parts.push_back({condition.group, condition.Text(), values.Show(value),
                              Compare(condition.comparison, value.comparable, condition.needed)});
    }
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
    Values values(report);
    verdict.title = requirements.title;
    for (const Requirement& line : requirements.lines)
        verdict.lines.push_back(JudgeLine(line, values));
    verdict.total = TotalOf(verdict.lines);
    return verdict;
}

}  // namespace kel::server
