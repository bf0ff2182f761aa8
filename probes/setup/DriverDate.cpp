#include "probes/setup/DriverDate.h"

#include <vector>

#include "values/Text.h"

namespace kel {

namespace {

/// A number of decimal digits in a range; 0 for every other text.
std::uint32_t ReadPart(std::wstring_view text, std::size_t maxDigits, std::uint32_t min, std::uint32_t max)
{
    if (text.empty() || text.size() > maxDigits ||
        text.find_first_not_of(L"0123456789") != std::wstring_view::npos)
        return 0;
    const std::uint32_t number = ToUnsigned(std::wstring(text));
    return number >= min && number <= max ? number : 0;
}

}  // namespace

std::wstring ReadDriverDate(const std::wstring& text)
{
    const std::vector<std::wstring_view> parts = Split(text, L'-');
    if (parts.size() != 3)
        return {};
    const std::uint32_t month = ReadPart(parts[0], 2, 1, 12);
    const std::uint32_t day = ReadPart(parts[1], 2, 1, 31);
    const std::uint32_t year = ReadPart(parts[2], 4, 1980, 9999);
    if (month == 0 || day == 0 || year == 0)
        return {};
    std::wstring date = std::to_wstring(year);
    for (const std::uint32_t part : {month, day}) {
        date += part < 10 ? L"-0" : L"-";
        date += std::to_wstring(part);
    }
    return date;
}

}  // namespace kel
