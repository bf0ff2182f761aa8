#include "verdict/ValueKinds.h"

#include <algorithm>
#include <initializer_list>

#include "verdict/text/Text.h"

namespace kel {

namespace {

struct Fitting {
    std::string_view comparison;
    std::initializer_list<ValueType> offered,
        accepted;  // the second ones are right, but seldom what is meant
};

using enum ValueType;

// In the order in which they are offered.
const Fitting Fittings[] = {
    {"yes", {YesNo}, {}},
    {"no", {YesNo}, {}},
    {"at least", {Number, Size, Speed, Bandwidth, Resolution}, {}},
    {"at most", {Number, Size, Speed, Bandwidth}, {}},
    {"at least version", {Version}, {}},
    {"compatible version", {Version}, {}},
    {"at most version", {Version}, {}},
    {"contains", {Text}, {Version, Resolution}},
    {"equals", {Text, Number, Resolution, Version}, {YesNo, Size, Speed, Bandwidth}},
    {"one of", {Text, Number, Resolution, Version}, {YesNo, Size, Speed, Bandwidth}},
    {"none of", {Text, Number, Resolution, Version}, {YesNo, Size, Speed, Bandwidth}},
    {"any", {Text, YesNo, Number, Size, Speed, Bandwidth, Resolution, Version}, {}},
};

bool Contains(const std::initializer_list<ValueType>& types, ValueType type)
{
    return std::find(types.begin(), types.end(), type) != types.end();
}

}  // namespace

const ValueKind& KindOf(const CatalogueValue& value)
{
    return ValueKinds[static_cast<std::size_t>(&value - CatalogueValues.data())];
}

std::string_view ToString(ValueType type)
{
    switch (type) {
        case Text:
            return "text";
        case YesNo:
            return "yes or no";
        case Number:
            return "number";
        case Size:
            return "amount of bytes";
        case Speed:
            return "amount of hertz";
        case Bandwidth:
            return "amount of bits per second";
        case Resolution:
            return "resolution";
        case Version:
            break;
    }
    return "version";
}

bool Fits(const Comparison& comparison, ValueType type)
{
    return std::any_of(std::begin(Fittings), std::end(Fittings), [&](const Fitting& fitting) {
        return fitting.comparison == comparison.name &&
               (Contains(fitting.offered, type) || Contains(fitting.accepted, type));
    });
}

std::vector<std::string_view> FittingComparisons(ValueType type)
{
    std::vector<std::string_view> names;
    for (const Fitting& fitting : Fittings) {
        if (Contains(fitting.offered, type))
            names.push_back(fitting.comparison);
    }
    return names;
}

std::vector<std::string> DivideChoices(std::string_view text)
{
    std::vector<std::string> choices;
    while (!text.empty()) {
        const std::string_view choice = text.substr(0, text.find(','));
        if (const std::string_view bare = Trim(choice); !bare.empty())
            choices.emplace_back(bare);
        text.remove_prefix(std::min(choice.size() + 1, text.size()));
    }
    return choices;
}

}  // namespace kel
