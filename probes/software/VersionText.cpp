#include "probes/software/VersionText.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "values/Text.h"
#include "values/TextMatch.h"

namespace kel {

namespace {

constexpr std::wstring_view Digits = L"0123456789";
constexpr std::size_t MaxFieldDigits = 9;
constexpr std::size_t PackageFields = 4;
constexpr std::size_t PackageParts = 5;  // name, version, architecture, resource, publisher

/// Removes the first field of a dotted number and returns it; 0 when there is none.
std::uint32_t TakeField(std::wstring_view& version)
{
    std::uint32_t field = 0;
    while (!version.empty() && version.front() != L'.') {
        field = field * 10 + static_cast<std::uint32_t>(version.front() - L'0');
        version.remove_prefix(1);
    }
    version.remove_prefix(std::min<std::size_t>(1, version.size()));
    return field;
}

}  // namespace

std::wstring ReadDottedNumber(std::wstring_view text)
{
    std::size_t length = 0;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find_first_not_of(Digits, start), text.size());
        if (end == start)
            break;
        if (end - start > MaxFieldDigits)
            return {};
        length = end;
        if (end == text.size() || text[end] != L'.')
            break;
        start = end + 1;
    }
    return std::wstring(text.substr(0, length));
}

bool IsLowerVersion(std::wstring_view version, std::wstring_view than)
{
    while (!version.empty() || !than.empty()) {
        const std::uint32_t one = TakeField(version);
        const std::uint32_t other = TakeField(than);
        if (one != other)
            return one < other;
    }
    return false;
}

std::wstring ReadPackageVersion(std::wstring_view fullName, std::wstring_view family)
{
    const std::vector<std::wstring_view> parts = Split(fullName, L'_');
    if (parts.size() != PackageParts ||
        !IsSameText(std::wstring(parts.front()) + L"_" + std::wstring(parts.back()), family))
        return {};
    std::wstring version = ReadDottedNumber(parts[1]);
    const auto points = static_cast<std::size_t>(std::ranges::count(version, L'.'));
    return version == parts[1] && points + 1 == PackageFields ? version : std::wstring();
}

}  // namespace kel
