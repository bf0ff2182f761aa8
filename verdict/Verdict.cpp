#include "verdict/Verdict.h"

#include <algorithm>
#include <map>
#include <set>

#include "verdict/NominalSize.h"
#include "verdict/text/Text.h"

namespace kel {

namespace {

/// Shown for an absent value beside others that are known.
constexpr const char* Absent = "–";

/// Shown as the value of a version whose product is missing.
constexpr const char* NotInstalled = "not installed";

// Bytes of an alternative's found text: the longest value and what is added to it.
constexpr std::size_t MaxShown = Verdict::MaxFound + 50;

/// The total of lines with these results, of which recommendations do not count.
Result Total(const Requirements& requirements, const std::vector<Result>& results)
{
    const auto has = [&](Result result) {
        for (std::size_t i = 0; i < results.size(); ++i) {
            if (!requirements.lines[i].recommended && results[i] == result)
                return true;
        }
        return false;
    };
    if (has(Result::Fail))
        return Result::Fail;
    return has(Result::Pass) && !has(Result::Unknown) ? Result::Pass : Result::Unknown;
}

/// Passes when one passes; otherwise unknown when one is unknown.
Result Best(const std::vector<Result>& results)
{
    const auto has = [&](Result result) {
        return std::find(results.begin(), results.end(), result) != results.end();
    };
    return has(Result::Pass) ? Result::Pass : has(Result::Unknown) ? Result::Unknown : Result::Fail;
}

/// Fails when one fails; otherwise unknown when one is unknown.
Result Worst(const std::vector<Result>& results)
{
    const auto has = [&](Result result) {
        return std::find(results.begin(), results.end(), result) != results.end();
    };
    return has(Result::Fail) ? Result::Fail : has(Result::Unknown) ? Result::Unknown : Result::Pass;
}

/// The texts of values: "4.0 GB; 12.1"; empty when none is known.
std::string JoinFound(const std::vector<std::string>& values, const char* separator)
{
    std::string found;
    for (const std::string& value : values)
        found += (&value == &values.front() ? "" : separator) + (value.empty() ? Absent : value);
    const bool isKnown = std::any_of(values.begin(), values.end(), [](const auto& v) { return !v.empty(); });
    return isKnown ? found : std::string();
}

/// The values of the parts, each once.
std::string JoinFound(const std::vector<VerdictPart>& parts)
{
    std::vector<std::string> values;
    std::set<std::pair<int, std::string>> shown;
    for (const VerdictPart& part : parts) {
        if (shown.insert({part.group, part.found}).second)
            values.push_back(part.found);
    }
    return JoinFound(values, "; ");
}

/// The values that the requirements ask for. Several conditions may ask for the same one, which is prepared
/// once.
class Values {
public:
    struct Value {
        std::string normalized, shown;
    };

    /// @param wantsTexts whether the found texts are wanted, and not only the results
    Values(const ValueLookup& valueLookup, bool wantsTexts) : hasTexts(wantsTexts), lookup(valueLookup) {}

    const bool hasTexts;

    const Value& Get(int group, int index)
    {
        const auto known = values.find({group, index});
        if (known != values.end())
            return known->second;
        const std::string text = lookup(group, index).value_or(std::string());
        return values
            .emplace(std::pair(group, index), Value{NormalizeValue(text), Shortened(text, Verdict::MaxFound)})
            .first->second;
    }

    /// The number of the group's indexes in the report, counted from 0; at most MaxIndexes.
    int Count(int group)
    {
        const auto [count, isNew] = counts.emplace(group, 0);
        while (isNew && count->second < Verdict::MaxIndexes && lookup(group, count->second))
            ++count->second;
        return count->second;
    }

    /// The text as a line shows it: "…" once MaxFoundTotal is used up.
    std::string Show(const std::string& text)
    {
        std::string shown = Shortened(text, room);
        room -= std::min(room, shown.size());
        return shown;
    }

private:
    const ValueLookup& lookup;
    std::map<std::pair<int, int>, Value> values;
    std::map<int, int> counts;
    std::size_t room = Verdict::MaxFoundTotal;
};

struct Finding {
    Result result = Result::Unknown;
    std::string found;
};

Finding JudgeCondition(const Condition& condition, int index, Values& values)
{
    const CatalogueValue* known = FindCatalogueValue(condition.group);
    const Values::Value& value = values.Get(condition.group, index);
    if (Trim(value.shown).empty() && known && known->existence != 0 &&
        values.Get(known->existence, 0).normalized == "no")
        return {Result::Fail, NotInstalled};
    const SoldAs soldAs = known ? known->soldAs : SoldAs::Nothing;
    Finding finding{Compare(*condition.comparison, value.normalized, condition.needed, soldAs), {}};
    if (!values.hasTexts)
        return finding;
    finding.found = value.shown;
    if (condition.comparison->comparesNominalSizes) {
        const auto figure = ParseAmount(value.normalized);
        const auto nominal = figure ? FindNominalSize(*figure, soldAs) : std::nullopt;
        if (nominal && nominal->bytes != figure->number)
            finding.found += ", sold as " + nominal->text;
    }
    return finding;
}

/// The alternative for one device. Values that have no indexes are the same for all.
Finding JudgeDevice(const Alternative& alternative, int device, Values& values)
{
    std::vector<Result> results;
    std::vector<std::string> found;
    for (const Condition& condition : alternative.allOf) {
        const CatalogueValue* known = FindCatalogueValue(condition.group);
        const Finding finding = JudgeCondition(condition, known && !known->hasIndexes ? 0 : device, values);
        results.push_back(finding.result);
        found.push_back(finding.found);
    }
    return {Worst(results), JoinFound(found, " and ")};
}

/// The alternative for any device: the one that passes, or else the values of all.
Finding JudgeAlternative(const Alternative& alternative, Values& values)
{
    int devices = 1;
    if (alternative.ofAny) {
        for (const Condition& condition : alternative.allOf)
            devices = std::max(devices, values.Count(condition.group));
    }
    std::vector<Result> results;
    std::vector<std::string> found;
    for (int device = 0; device < devices; ++device) {
        Finding finding = JudgeDevice(alternative, device, values);
        if (finding.result == Result::Pass)
            return finding;
        results.push_back(finding.result);
        if (std::find(found.begin(), found.end(), finding.found) == found.end())
            found.push_back(finding.found);
    }
    return {Best(results), JoinFound(found, "; ")};
}

VerdictLine JudgeLine(const Requirement& requirement, Values& values, const Languages& languages)
{
    VerdictLine line;
    std::vector<Result> results;
    for (const Alternative& alternative : requirement.anyOf) {
        const Finding finding = JudgeAlternative(alternative, values);
        results.push_back(finding.result);
        line.parts.push_back({alternative.allOf.front().group, alternative.Text(),
                              values.Show(Shortened(finding.found, MaxShown)), finding.result});
    }
    line.group = line.parts.front().group;
    line.label = requirement.label.In(languages);
    line.neededText = requirement.neededText.In(languages);
    line.needed = requirement.Needed();
    line.found = JoinFound(line.parts);
    line.result = Best(results);
    line.advice = requirement.advice.In(languages);
    line.recommended = requirement.recommended;
    return line;
}

}  // namespace

Verdict Judge(const Requirements& requirements, const ValueLookup& lookup, const Languages& languages)
{
    Verdict verdict;
    Values values(lookup, true);
    std::vector<Result> results;
    verdict.title = requirements.title.In(languages);
    for (const Requirement& line : requirements.lines) {
        verdict.lines.push_back(JudgeLine(line, values, languages));
        results.push_back(verdict.lines.back().result);
    }
    verdict.total = Total(requirements, results);
    return verdict;
}

VerdictResults JudgeResults(const Requirements& requirements, const ValueLookup& lookup)
{
    VerdictResults verdict;
    Values values(lookup, false);
    for (const Requirement& line : requirements.lines) {
        std::vector<Result> results;
        for (const Alternative& alternative : line.anyOf)
            results.push_back(JudgeAlternative(alternative, values).result);
        verdict.lines.push_back(Best(results));
    }
    verdict.total = Total(requirements, verdict.lines);
    return verdict;
}

}  // namespace kel
