#include "verdict/Verdict.h"

#include <algorithm>
#include <unordered_map>

#include "verdict/text/Text.h"

namespace kel {

namespace {

/// Shown for an absent value beside others that are known.
constexpr const char* Absent = "–";

Result JoinLines(const std::vector<VerdictLine>& lines)
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

Result JoinParts(const std::vector<VerdictPart>& parts)
{
    const auto has = [&](Result result) {
        return std::any_of(parts.begin(), parts.end(),
                           [=](const VerdictPart& part) { return part.result == result; });
    };
    return has(Result::Pass) ? Result::Pass : has(Result::Unknown) ? Result::Unknown : Result::Fail;
}

/// The values of the parts, once for each group: "4.0 GB; 12.1".
std::string JoinFound(const std::vector<VerdictPart>& parts)
{
    std::string found;
    std::vector<int> shown;
    bool isKnown = false;
    for (const VerdictPart& part : parts) {
        if (std::find(shown.begin(), shown.end(), part.group) != shown.end())
            continue;
        if (!shown.empty())
            found += "; ";
        shown.push_back(part.group);
        isKnown = isKnown || !part.found.empty();
        found += part.found.empty() && parts.size() > 1 ? Absent : part.found;
    }
    return isKnown ? found : std::string();
}

/// The values that the requirements ask for. Several conditions may ask for the same one, which is prepared
/// once.
class Values {
public:
    struct Value {
        std::string normalized, shown;
    };

    explicit Values(const ValueLookup& valueLookup) : lookup(valueLookup) {}

    const Value& Get(int group)
    {
        const auto known = values.find(group);
        if (known != values.end())
            return known->second;
        const std::string text = lookup(group, 0).value_or(std::string());
        return values.emplace(group, Value{NormalizeValue(text), Shortened(text, Verdict::MaxFound)})
            .first->second;
    }

    /// The value as a line shows it: "…" once MaxFoundTotal is used up.
    std::string Show(const Value& value)
    {
        std::string shown = Shortened(value.shown, room);
        room -= std::min(room, shown.size());
        return shown;
    }

private:
    const ValueLookup& lookup;
    std::unordered_map<int, Value> values;
    std::size_t room = Verdict::MaxFoundTotal;
};

VerdictLine JudgeLine(const Requirement& requirement, Values& values)
{
    VerdictLine line;
    for (const Condition& condition : requirement.anyOf) {
        const Values::Value& value = values.Get(condition.group);
        line.parts.push_back({condition.group, condition.Text(), values.Show(value),
                              Compare(*condition.comparison, value.normalized, condition.needed)});
    }
    line.group = requirement.anyOf.front().group;
    line.label = requirement.label;
    line.needed = requirement.Needed();
    line.found = JoinFound(line.parts);
    line.result = JoinParts(line.parts);
    line.advice = requirement.advice;
    line.recommended = requirement.recommended;
    return line;
}

}  // namespace

Verdict Judge(const Requirements& requirements, const ValueLookup& lookup)
{
    Verdict verdict;
    Values values(lookup);
    verdict.title = requirements.title;
    for (const Requirement& line : requirements.lines)
        verdict.lines.push_back(JudgeLine(line, values));
    verdict.total = JoinLines(verdict.lines);
    return verdict;
}

}  // namespace kel
