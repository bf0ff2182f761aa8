#include "server/admin/figures/ValueSample.h"

#include <algorithm>

#include "verdict/NominalSize.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

/// The amount that "at least" compares, and a text that it can be compared with.
struct ComparedAmount {
    double number = 0;
    std::string text;
};

ComparedAmount ToCompared(const Amount& amount, const std::string& text, SoldAs soldAs)
{
    const auto nominal = FindNominalSize(amount, soldAs);
    if (nominal && nominal->bytes > amount.number)
        return {nominal->bytes, nominal->text};
    return {amount.number, text};
}

}  // namespace

ValueSample::ValueSample(int id) : id(id), soldAs(SoldAs::Nothing)
{
    if (const CatalogueValue* known = FindCatalogueValue(id))
        soldAs = known->soldAs;
}

void ValueSample::Add(const Report& report)
{
    const std::string* value = report.Value(id);
    const std::string compared = value ? NormalizeValue(*value) : "";
    if (compared.empty()) {
        ++unreported;
        return;
    }
    ++reported;
    Value& entry = values[compared];
    if (entry.count++ == 0)
        entry.text = std::string(Trim(*value));
}

bool ValueSample::IsOfAmounts() const
{
    std::map<AmountKind, int> kinds;
    for (const auto& [text, value] : values) {
        if (const auto amount = ParseAmount(text))
            kinds[amount->kind] += value.count;
    }
    // Some texts that cannot be read do not make the others texts.
    return std::any_of(kinds.begin(), kinds.end(),
                       [&](const auto& kind) { return kind.second * 2 > reported; });
}

int ValueSample::Meeting(const Condition& condition) const
{
    int count = 0;
    const std::string needed = NormalizeValue(condition.needed);
    for (const auto& [text, value] : values) {
        if (Compare(*condition.comparison, text, needed, soldAs) == Result::Pass)
            count += value.count;
    }
    return count;
}

std::vector<ValueSample::Step> ValueSample::AtLeast(const std::vector<std::string>& asked) const
{
    std::map<double, Step> amounts;
    for (const auto& [text, value] : values) {
        if (const auto amount = ParseAmount(text)) {
            const ComparedAmount compared = ToCompared(*amount, value.text, soldAs);
            Step& step = amounts[compared.number];
            step.label = step.label.empty() ? compared.text : step.label;
            step.count += value.count;
        }
    }
    while (amounts.size() > MaxSteps)
        amounts.erase(std::min_element(
            amounts.begin(), amounts.end(),
            [](const auto& left, const auto& right) { return left.second.count < right.second.count; }));
    for (const std::string& needed : asked) {
        if (const auto amount = ParseAmount(NormalizeValue(needed), NominalSteps(soldAs))) {
            Step& step = amounts[amount->number];
            step.label = needed;
            step.isAsked = true;
        }
    }
    std::vector<Step> steps;
    for (auto& [number, step] : amounts) {
        step.count = Meeting({id, ParseComparison("at least"), step.label});
        steps.push_back(step);
    }
    return steps;
}

std::vector<ValueSample::Step> ValueSample::Steps(const std::vector<std::string>& asked) const
{
    return IsOfAmounts() ? AtLeast(asked) : Values(MaxSteps);
}

std::vector<ValueSample::Step> ValueSample::Values(std::size_t max) const
{
    std::vector<Step> steps;
    for (const auto& [text, value] : values)
        steps.push_back({value.text, value.count});
    std::stable_sort(steps.begin(), steps.end(),
                     [](const Step& left, const Step& right) { return left.count > right.count; });
    steps.resize(std::min(steps.size(), max));
    return steps;
}

}  // namespace kel::server
