#include "verdict/Comparison.h"

#include <algorithm>
#include <iterator>

#include "verdict/Readings.h"
#include "verdict/text/Text.h"

namespace kel {

namespace {

// Bytes. No real value is nearly as long, and each line of the requirements takes time for it.
constexpr std::size_t MaxValue = 4096;

Result PassIf(bool holds)
{
    return holds ? Result::Pass : Result::Fail;
}

Result CompareVersions(std::string_view found, std::string_view needed)
{
    const auto left = ParseVersion(found), right = ParseVersion(needed);
    return left && right ? PassIf(*left >= *right) : Result::Unknown;
}

/// An amount is comparable with an amount of its own kind, and with a needed number that has no unit.
Result CompareAmounts(std::string_view found, std::string_view needed, bool (*holds)(double, double))
{
    const auto left = ParseAmount(found), right = ParseAmount(needed);
    if (!left || !right || (left->kind != right->kind && right->kind != AmountKind::Number))
        return Result::Unknown;
    return PassIf(holds(left->number, right->number));
}

/// By amount, or, where screen edges are needed, by whether the screen covers them, upright or lying.
Result CompareAtLeast(std::string_view found, std::string_view needed)
{
    const auto right = ParseEdges(needed);
    if (!right)
        return CompareAmounts(found, needed, [](double has, double needs) { return has >= needs; });
    const auto left = ParseEdges(found);
    return left ? PassIf(left->longer >= right->longer && left->shorter >= right->shorter) : Result::Unknown;
}

Result CompareAtMost(std::string_view found, std::string_view needed)
{
    return CompareAmounts(found, needed, [](double has, double needs) { return has <= needs; });
}

Result CompareEqual(std::string_view found, std::string_view needed)
{
    return PassIf(found == needed);
}

/// Whether the value is one of the needed choices, which commas separate.
Result CompareOneOf(std::string_view found, std::string_view choices)
{
    for (;;) {
        const std::size_t comma = choices.find(',');
        if (Trim(choices.substr(0, comma)) == found)
            return Result::Pass;
        if (comma == std::string_view::npos)
            return Result::Fail;
        choices.remove_prefix(comma + 1);
    }
}

Result CompareContains(std::string_view found, std::string_view needed)
{
    return PassIf(found.find(needed) != std::string_view::npos);
}

Result PassAny(std::string_view, std::string_view)
{
    return Result::Pass;
}

Result CompareYes(std::string_view found, std::string_view)
{
    return found == "yes" ? Result::Pass : found == "no" ? Result::Fail : Result::Unknown;
}

Result CompareNo(std::string_view found, std::string_view)
{
    return found == "no" ? Result::Pass : found == "yes" ? Result::Fail : Result::Unknown;
}

std::string_view NeedsVersion(std::string_view needed)
{
    return ParseVersion(needed) ? "" : "needs a version";
}

std::string_view NeedsAmount(std::string_view needed)
{
    return ParseAmount(needed) ? "" : "needs a number, with or without a unit";
}

std::string_view NeedsAmountOrEdges(std::string_view needed)
{
    return ParseAmount(needed) || ParseEdges(needed)
               ? ""
               : "needs a number, with or without a unit, or a resolution";
}

std::string_view NeedsText(std::string_view needed)
{
    return Trim(needed).empty() ? "needs a text" : "";
}

std::string_view NeedsNothing(std::string_view)
{
    return "";
}

constexpr Comparison Comparisons[] = {
    {"at least version", NeedsVersion, CompareVersions},
    {"at least", NeedsAmountOrEdges, CompareAtLeast},
    {"at most", NeedsAmount, CompareAtMost},
    {"equals", NeedsText, CompareEqual},
    {"one of", NeedsText, CompareOneOf},
    {"contains", NeedsText, CompareContains},
    {"any", NeedsNothing, PassAny},
    {"yes", NeedsNothing, CompareYes},
    {"no", NeedsNothing, CompareNo},
};

}  // namespace

const Comparison* ParseComparison(std::string_view name)
{
    const auto* found = std::find_if(std::begin(Comparisons), std::end(Comparisons),
                                     [&](const Comparison& comparison) { return comparison.name == name; });
    return found != std::end(Comparisons) ? found : nullptr;
}

std::string NormalizeValue(std::string_view value)
{
    return value.size() <= MaxValue ? Lower(Trim(value)) : std::string();
}

Result Compare(const Comparison& comparison, std::string_view found, std::string_view needed)
{
    return found.empty() ? Result::Unknown : comparison.compare(found, Lower(Trim(needed)));
}

}  // namespace kel
