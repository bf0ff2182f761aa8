#include "values/Quantity.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cwctype>
#include <limits>

#include "diag/Log.h"
#include "values/Text.h"

namespace kel {

namespace {

/// The characters of an unsigned number at the start of a text, without a plus sign before its exponent.
std::string TakeNumberText(std::wstring_view text)
{
    std::string number;
    bool hasDigit = false;
    bool hasPoint = false;
    bool hasExponent = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] >= L'0' && text[i] <= L'9') {
            hasDigit = true;
            number += static_cast<char>(text[i]);
        } else if (text[i] == L'.' && !hasPoint && !hasExponent) {
            hasPoint = true;
            number += '.';
        } else if ((text[i] == L'e' || text[i] == L'E') && hasDigit && !hasExponent) {
            hasExponent = true;
            number += 'e';
            const std::wstring_view rest = text.substr(i + 1);
            if (rest.starts_with(L'-'))
                number += '-';
            if (rest.starts_with(L'-') || rest.starts_with(L'+'))
                ++i;
        } else {
            break;
        }
    }
    return number;
}

/// Whether a number that a double cannot hold is too large for it, and not too small.
bool IsTooLarge(std::string_view number)
{
    const std::size_t mantissa = std::min(number.find('e'), number.size());
    const std::string_view exponentText = number.substr(std::min(mantissa + 1, number.size()));
    std::int64_t exponent = 0;
    const auto [end, error] =
        std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
    if (error == std::errc::result_out_of_range)
        return !exponentText.starts_with('-');
    const std::size_t point = std::min(number.find('.'), mantissa);
    const std::size_t firstDigit = number.find_first_of("123456789");
    return exponent + static_cast<std::int64_t>(point) - static_cast<std::int64_t>(firstDigit) > 0;
}

/// Writes a number below 2^53 that is 0 or at least 1. It is rounded by its exact value, half way to the even
/// digit. From integers: a stream switches the process's locale while it writes such a number, and
/// `std::to_chars` would add 170 KB of tables to the DLL.
std::wstring WithOneDecimal(double number)
{
    constexpr std::uint64_t One = std::uint64_t{1} << 52;  // no bit of such a number's fraction is lower
    const double whole = std::floor(number);
    const std::uint64_t scaled = static_cast<std::uint64_t>((number - whole) * static_cast<double>(One)) * 10;
    std::uint64_t tenths = scaled / One;
    const std::uint64_t rest = scaled % One;
    if (rest > One / 2 || (rest == One / 2 && tenths % 2 != 0))
        ++tenths;
    return std::to_wstring(static_cast<std::uint64_t>(whole) + tenths / 10) + L'.' +
           std::to_wstring(tenths % 10);
}

}  // namespace

std::uint64_t TruncateToUnsigned(double number)
{
    constexpr double Limit = 18446744073709551616.0;  // 2 to the 64th
    if (!(number > 0.0))
        return 0;
    return number < Limit ? static_cast<std::uint64_t>(number) : std::numeric_limits<std::uint64_t>::max();
}

double LeadingNumber(std::wstring_view text)
{
    while (!text.empty() && std::iswspace(text.front()) != 0)
        text.remove_prefix(1);
    const bool isNegative = text.starts_with(L'-');
    if (isNegative || text.starts_with(L'+'))
        text.remove_prefix(1);

    const std::string number = TakeNumberText(text);
    const char* const end = number.data() + number.size();
    double magnitude = 0.0;
    const auto [next, error] = std::from_chars(number.data(), end, magnitude);
    if (error == std::errc::invalid_argument || next != end)
        return 0.0;
    if (error == std::errc::result_out_of_range)
        magnitude = IsTooLarge(number) ? std::numeric_limits<double>::max() : 0.0;
    return isNegative ? -magnitude : magnitude;
}

double UnitFactor(std::wstring_view upperCaseText, std::span<const Unit> units)
{
    for (const Unit& unit : units) {
        if (upperCaseText.find(unit.word) != std::wstring_view::npos)
            return unit.factor;
    }
    return 1.0;
}

bool ReadQuantity(const wchar_t* text, std::span<const Unit> units, const wchar_t* error,
                  std::uint64_t& amount) noexcept
{
    if (text == nullptr)
        return false;
    try {
        amount = TruncateToUnsigned(LeadingNumber(text) * UnitFactor(ToUpper(text), units));
        return true;
    } catch (...) {
        ReportFailure(LogWarning, error);
        return false;
    }
}

const wchar_t* WriteQuantity(std::uint64_t amount, double step, std::span<const wchar_t* const> units,
                             const wchar_t* error, std::wstring& text) noexcept
{
    try {
        auto number = static_cast<double>(amount);
        auto unit = units.begin();
        while (number >= step && unit + 1 != units.end()) {
            number /= step;
            ++unit;
        }
        text = WithOneDecimal(number);
        text.append(L" ").append(*unit);
    } catch (...) {
        text.clear();
        ReportFailure(LogWarning, error);
    }
    return text.c_str();
}

}  // namespace kel
