#include "verdict/Comparison.h"

#include <algorithm>
#include <iterator>

#include "verdict/NominalSize.h"
#include "verdict/Readings.h"
#include "verdict/text/Text.h"

namespace kel {

namespace {

// Bytes. Real values are far shorter, and each line of the requirements would spend time on a longer one.
constexpr std::size_t MaxValue = 4096;

Result PassIf(bool holds)
{
    return holds ? Result::Pass : Result::Fail;
}

Result CompareVersions(std::string_view found, std::string_view needed,
                       bool (*holds)(const DottedVersion&, const DottedVersion&))
{
    const auto left = ParseVersion(found), right = ParseVersion(needed);
    return left && right ? PassIf(holds(*left, *right)) : Result::Unknown;
}

Result CompareAtLeastVersion(std::string_view found, std::string_view needed)
{
    return CompareVersions(found, needed,
                           [](const DottedVersion& has, const DottedVersion& needs) { return has >= needs; });
}

Result CompareAtMostVersion(std::string_view found, std::string_view needed)
{
    return CompareVersions(found, needed,
                           [](const DottedVersion& has, const DottedVersion& needs) { return has <= needs; });
}

Result CompareCompatibleVersion(std::string_view found, std::string_view needed)
{
    return CompareVersions(found, needed, [](const DottedVersion& has, const DottedVersion& needs) {
        return has >= needs && has.Major() == needs.Major();
    });
}

/// An amount is comparable with an amount of its own kind, and with a needed number that has no unit.
bool AreComparable(const std::optional<Amount>& found, const std::optional<Amount>& needed)
{
    return found && needed && (found->kind == needed->kind || needed->kind == AmountKind::Number);
}

Result CompareAmounts(std::string_view found, std::string_view needed, bool (*holds)(double, double))
{
    const auto left = ParseAmount(found), right = ParseAmount(needed);
    return AreComparable(left, right) ? PassIf(holds(left->number, right->number)) : Result::Unknown;
}

Result CompareNominalSize(std::string_view found, std::string_view needed, SoldAs soldAs)
{
    const auto left = ParseAmount(found), right = ParseAmount(needed, NominalSteps(soldAs));
    if (!AreComparable(left, right))
        return Result::Unknown;
    const auto nominal = FindNominalSize(*left, soldAs);
    return PassIf(std::max(left->number, nominal ? nominal->bytes : 0) >= right->number);
}

/// Compares amounts or, where a resolution is needed, whether the screen covers it in either orientation.
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

/// Whether the value is one of the choices, which commas separate.
bool IsAmong(std::string_view found, std::string_view choices)
{
    for (;;) {
        const std::size_t comma = choices.find(',');
        if (Trim(choices.substr(0, comma)) == found)
            return true;
        if (comma == std::string_view::npos)
            return false;
        choices.remove_prefix(comma + 1);
    }
}

Result CompareOneOf(std::string_view found, std::string_view choices)
{
    return PassIf(IsAmong(found, choices));
}

Result CompareNoneOf(std::string_view found, std::string_view choices)
{
    return PassIf(!IsAmong(found, choices));
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
    {"at least version", NeedsVersion, CompareAtLeastVersion},
    {"compatible version", NeedsVersion, CompareCompatibleVersion},
    {"at most version", NeedsVersion, CompareAtMostVersion},
    {"at least", NeedsAmountOrEdges, CompareAtLeast, true},
    {"at most", NeedsAmount, CompareAtMost},
    {"equals", NeedsText, CompareEqual},
    {"one of", NeedsText, CompareOneOf},
    {"none of", NeedsText, CompareNoneOf},
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

Result Compare(const Comparison& comparison, std::string_view found, std::string_view needed, SoldAs soldAs)
{
    if (found.empty())
        return Result::Unknown;
    const std::string bare = Lower(Trim(needed));
    return soldAs != SoldAs::Nothing && comparison.comparesNominalSizes
               ? CompareNominalSize(found, bare, soldAs)
               : comparison.compare(found, bare);
}

}  // namespace kel
