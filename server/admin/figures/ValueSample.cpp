#include "server/admin/figures/ValueSample.h"

#include <algorithm>
#include <set>

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

ValueSample::ValueSample(int id, bool ofAny) : id(id), ofAny(ofAny), soldAs(SoldAs::Nothing)
{
    if (const CatalogueValue* known = FindCatalogueValue(id))
        soldAs = known->soldAs;
}

void ValueSample::Add(const Report& report)
{
    Devices devices;
    for (const std::string* value : ofAny ? report.Devices(id) : report.Devices(id, 1)) {
        const std::string& compared = Normalized(*value);
        // Equal ones count once, but the first stays the first, even if it is empty.
        if (devices.empty() ||
            (!compared.empty() && std::find(devices.begin(), devices.end(), compared) == devices.end()))
            devices.push_back(compared);
    }
    if (std::all_of(devices.begin(), devices.end(), [](const auto& text) { return text.empty(); })) {
        ++unreported;
        return;
    }
    ++reported;
    ++sessions[devices];
}

/// The text that is compared; many sessions report the same.
const std::string& ValueSample::Normalized(const std::string& value)
{
    const auto [place, isNew] = normalized.try_emplace(value);
    if (isNew) {
        place->second = NormalizeValue(value);
        texts.emplace(place->second, Trim(value));
    }
    return place->second;
}

bool ValueSample::IsOfAmounts() const
{
    std::map<AmountKind, int> kinds;
    for (const auto& [devices, count] : sessions) {
        std::set<AmountKind> own;
        for (const std::string& text : devices) {
            if (const auto amount = ParseAmount(text))
                own.insert(amount->kind);
        }
        for (const AmountKind kind : own)
            kinds[kind] += count;
    }
    // Some texts that cannot be read do not make the others texts.
    return std::any_of(kinds.begin(), kinds.end(),
                       [&](const auto& kind) { return kind.second * 2 > reported; });
}

int ValueSample::Meeting(const Condition& condition, bool any) const
{
    int meeting = 0;
    const std::string needed = NormalizeValue(condition.needed);
    for (const auto& [devices, count] : sessions) {
        const auto last = any ? devices.end() : devices.begin() + 1;
        if (std::any_of(devices.begin(), last, [&](const std::string& text) {
                return Compare(*condition.comparison, text, needed, soldAs) == Result::Pass;
            }))
            meeting += count;
    }
    return meeting;
}

std::vector<ValueSample::Step> ValueSample::AtLeast(const std::vector<std::string>& asked) const
{
    std::map<double, Step> amounts;
    for (const auto& [devices, count] : sessions) {
        std::set<double> own;
        for (const std::string& text : devices) {
            const auto amount = ParseAmount(text);
            if (!amount)
                continue;
            const ComparedAmount compared = ToCompared(*amount, texts.at(text), soldAs);
            Step& step = amounts[compared.number];
            step.label = step.label.empty() ? compared.text : step.label;
            step.count += own.insert(compared.number).second ? count : 0;
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
        step.count = Meeting({id, ParseComparison("at least"), step.label}, ofAny);
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
    std::map<std::string, int> counts;
    for (const auto& [devices, count] : sessions) {
        for (const std::string& text : devices)
            counts[text] += text.empty() ? 0 : count;
    }
    for (const auto& [text, count] : counts) {
        if (count > 0)
            steps.push_back({texts.at(text), count});
    }
    std::stable_sort(steps.begin(), steps.end(),
                     [](const Step& left, const Step& right) { return left.count > right.count; });
    steps.resize(std::min(steps.size(), max));
    return steps;
}

}  // namespace kel::server
