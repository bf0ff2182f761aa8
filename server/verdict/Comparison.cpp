#include "server/verdict/Comparison.h"

#include "server/base/Text.h"
#include "server/verdict/Readings.h"

namespace kel::server {

namespace {

// Bytes. Nothing that a machine tells is near it, and each line takes its time for it.
constexpr std::size_t LongestValue = 4096;

Result Of(bool holds)
{
    return holds ? Result::Pass : Result::Fail;
}

Result CompareVersion(std::string_view found, std::string_view needed)
{
    const auto left = ReadVersion(found), right = ReadVersion(needed);
    return left && right ? Of(*left >= *right) : Result::Unknown;
}

/// An amount is comparable with one of its own kind, and with a needed number that has no unit.
Result CompareQuantity(std::string_view found, std::string_view needed, bool (*holds)(double, double))
{
    const auto left = ReadQuantity(found), right = ReadQuantity(needed);
    if (!left || !right || (left->kind != right->kind && right->kind != Kind::Number))
        return Result::Unknown;
    return Of(holds(left->amount, right->amount));
}

/// By amount, or, where a resolution is needed, by whether the one covers the other, upright or lying.
Result CompareAtLeast(std::string_view found, std::string_view needed)
{
    const auto right = ReadResolution(needed);
    if (!right)
        return CompareQuantity(found, needed, [](double has, double needs) { return has >= needs; });
    const auto left = ReadResolution(found);
    return left ? Of(left->longer >= right->longer && left->shorter >= right->shorter) : Result::Unknown;
}

/// Whether the text is one of the choices, which commas separate. Both in lower case.
bool IsOneOf(std::string_view text, std::string_view choices)
{
    for (;;) {
        const std::size_t comma = choices.find(',');
        if (Trim(choices.substr(0, comma)) == text)
            return true;
        if (comma == std::string_view::npos)
            return false;
        choices.remove_prefix(comma + 1);
    }
}

Result CompareAnswer(std::string_view found, std::string_view wanted)
{
    return found == "yes" || found == "no" ? Of(found == wanted) : Result::Unknown;
}

struct Name {
    Comparison comparison;
    std::string_view name;
};

constexpr Name Names[] = {
    {Comparison::AtLeastVersion, "at least version"},
    {Comparison::AtLeast, "at least"},
    {Comparison::AtMost, "at most"},
    {Comparison::Equals, "equals"},
    {Comparison::OneOf, "one of"},
    {Comparison::Contains, "contains"},
    {Comparison::Any, "any"},
    {Comparison::Yes, "yes"},
    {Comparison::No, "no"},
};

}  // namespace

std::optional<Comparison> ComparisonOf(std::string_view name)
{
    for (const Name& row : Names) {
        if (row.name == name)
            return row.comparison;
    }
    return std::nullopt;
}

std::string_view NameOf(Comparison comparison)
{
    return Names[static_cast<std::size_t>(comparison)].name;
}

std::string WhyNeverMet(Comparison comparison, std::string_view needed)
{
    switch (comparison) {
        case Comparison::AtLeastVersion:
            return ReadVersion(needed) ? "" : "needs a version";
        case Comparison::AtLeast:
            return ReadQuantity(needed) || ReadResolution(needed)
                       ? ""
                       : "needs a number, with or without a unit, or a resolution";
        case Comparison::AtMost:
            return ReadQuantity(needed) ? "" : "needs a number, with or without a unit";
        case Comparison::Equals:
        case Comparison::OneOf:
        case Comparison::Contains:
            return Trim(needed).empty() ? "needs a text" : "";
        default:
            return "";
    }
}

std::string Comparable(const std::string* value)
{
    return value && value->size() <= LongestValue ? Lower(Trim(*value)) : std::string();
}

Result Compare(Comparison comparison, std::string_view left, std::string_view needed)
{
    if (left.empty())
        return Result::Unknown;
    const std::string right = Lower(Trim(needed));
    switch (comparison) {
        case Comparison::AtLeastVersion:
            return CompareVersion(left, right);
        case Comparison::AtLeast:
            return CompareAtLeast(left, right);
        case Comparison::AtMost:
            return CompareQuantity(left, right, [](double has, double needs) { return has <= needs; });
        case Comparison::Equals:
            return Of(left == right);
        case Comparison::OneOf:
            return Of(IsOneOf(left, right));
        case Comparison::Contains:
            return Of(left.find(right) != std::string::npos);
        case Comparison::Any:
            return Result::Pass;
        case Comparison::Yes:
            return CompareAnswer(left, "yes");
        case Comparison::No:
            return CompareAnswer(left, "no");
    }
    return Result::Unknown;
}

}  // namespace kel::server
