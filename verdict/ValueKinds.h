#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "verdict/Catalogue.h"
#include "verdict/Comparison.h"

namespace kel {

/// What a value measures or says, as comparisons see it.
enum class ValueType : std::uint8_t { Text, YesNo, Number, Size, Speed, Bandwidth, Resolution, Version };

/// What an author of requirements should know of a value.
struct ValueKind {
    ValueType type;
    SoldAs fallsShortOf;  ///< a size that it falls a little short of, while comparisons use the exact figure
    const char* example;  ///< as a report has it; empty for some texts
    const char* form;     ///< unit or form, in words; empty for some
    const char* choices;  ///< all values that it can have, between commas; empty when it can have others
};

/// The kinds of all values, in the order of CatalogueValues.
extern const std::span<const ValueKind> ValueKinds;

/// The kind of a value of the catalogue.
const ValueKind& KindOf(const CatalogueValue& value);

/// "amount of bytes"
std::string_view ToString(ValueType type);

/// Whether the comparison can decide about values of this type.
bool Fits(const Comparison& comparison, ValueType type);

/// The names of the comparisons to choose from for this type, the most usual first.
std::vector<std::string_view> FittingComparisons(ValueType type);

/// The texts between the commas, trimmed, without empty ones.
std::vector<std::string> DivideChoices(std::string_view text);

}  // namespace kel
