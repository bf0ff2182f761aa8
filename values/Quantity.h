// Numbers with units, read from texts and written as texts; shared by the quantity classes.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kel {

/// Truncates toward zero. Negative numbers and NaN give 0; numbers that are too large give the largest value.
std::uint64_t TruncateToUnsigned(double number);

/// Reads a floating-point number from the start of a text as a stream does: leading white space skipped; 0.0
/// when there is none or its exponent has no digits; the limit when it is too large. Not read by a stream,
/// which switches the locale of the whole process while it reads such a number.
double LeadingNumber(std::wstring_view text);

/// A unit word and its value in base units.
struct Unit {
    std::wstring_view word;
    double factor;
};

/// The factor of the first unit, in the order given, whose word occurs anywhere in the text; 1 when none
/// does.
double UnitFactor(std::wstring_view upperCaseText, std::span<const Unit> units);

/// Reads an amount in base units: the number at the start of a text, times the factor of its unit.
/// @param error the line for the log when reading fails
/// @return false for a null text, and when reading fails
bool ReadQuantity(const wchar_t* text, std::span<const Unit> units, const wchar_t* error,
                  std::uint64_t& amount) noexcept;

/// Writes an amount in the largest fitting unit with one decimal, as in "1.5 KB".
/// @param step the ratio of each unit to the one before it
/// @param units the names of the units, smallest first
/// @param error the line for the log when writing fails
/// @param text holds the returned text
const wchar_t* WriteQuantity(std::uint64_t amount, double step, std::span<const wchar_t* const> units,
                             const wchar_t* error, std::wstring& text) noexcept;

}  // namespace kel
