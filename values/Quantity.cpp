#include "values/Quantity.h"

#include <iomanip>
#include <limits>
#include <sstream>

#include "diag/Log.h"
#include "values/Text.h"

namespace kel {

std::uint64_t TruncateToUnsigned(double number)
{
    constexpr double Limit = 18446744073709551616.0;  // 2 to the 64th
    if (!(number > 0.0))
        return 0;
    return number < Limit ? static_cast<std::uint64_t>(number) : std::numeric_limits<std::uint64_t>::max();
}

double LeadingNumber(const std::wstring& text)
{
    std::wistringstream stream(text);
    double number = 0.0;
    stream >> number;
    return number;
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
        std::wostringstream stream;
        stream << std::fixed << std::setprecision(1) << number << L' ' << *unit;
        text = stream.str();
    } catch (...) {
        text.clear();
        ReportFailure(LogWarning, error);
    }
    return text.c_str();
}

}  // namespace kel
