#include "diag/Seconds.h"

#include <cmath>

namespace kel {

namespace {

constexpr std::uint32_t ExponentFrom = 1'000'000'000;  // milliseconds; from here on the exponent form is used

/// The value of the last of six significant digits, in milliseconds.
std::uint32_t LastDigit(std::uint32_t milliseconds)
{
    std::uint32_t unit = 1;
    for (std::uint32_t limit = 1'000'000; unit < 10'000 && milliseconds >= limit; limit *= 10)
        unit *= 10;
    return unit;
}

/// Rounds to six significant digits like the number of seconds as a double, which is rarely exact: an
/// apparent tie lies above or below the middle, and a real one goes to the even digit.
std::uint32_t Round(std::uint32_t milliseconds)
{
    const std::uint32_t unit = LastDigit(milliseconds);
    const std::uint32_t lower = milliseconds / unit;
    const std::uint32_t twice = milliseconds % unit * 2;
    bool isUp = twice > unit;
    if (twice == unit) {
        const double error = std::fma(milliseconds / 1000.0, 1000.0, -static_cast<double>(milliseconds));
        isUp = error > 0 || (!(error < 0) && lower % 2 != 0);
    }
    return (lower + (isUp ? 1 : 0)) * unit;
}

/// A whole number and the decimals of a fraction, without trailing zeros.
std::wstring Decimal(std::uint32_t whole, std::uint32_t fraction, std::size_t digits)
{
    std::wstring decimals = std::to_wstring(fraction);
    decimals.insert(0, digits - decimals.size(), L'0');
    decimals.erase(decimals.find_last_not_of(L'0') + 1);
    return std::to_wstring(whole) + (decimals.empty() ? L"" : L"." + decimals);
}

}  // namespace

std::wstring SecondsText(std::uint32_t milliseconds)
{
    const std::uint32_t rounded = Round(milliseconds);
    if (rounded < ExponentFrom)
        return Decimal(rounded / 1000, rounded % 1000, 3);
    return Decimal(rounded / ExponentFrom, rounded % ExponentFrom / 10'000, 5) + L"e+06";
}

}  // namespace kel
