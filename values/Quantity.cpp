#include "values/Quantity.h"

#include <iomanip>
#include <limits>
#include <sstream>

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

void FormatQuantity(std::uint64_t amount, double step, std::span<const wchar_t* const> units,
                    std::wstring& text)
{
    text.clear();
    auto number = static_cast<double>(amount);
    auto unit = units.begin();
    while (number >= step && unit + 1 != units.end()) {
        number /= step;
        ++unit;
    }
    std::wostringstream stream;
    stream << std::fixed << std::setprecision(1) << number << L' ' << *unit;
    text = stream.str();
}

}  // namespace kel
