#include "values/Size.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>

#include "diag/Log.h"
#include "values/Clone.h"
#include "values/Quantity.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr std::array<Unit, 4> ParsedSizeUnits = {
    {{L"KB", 1024.0}, {L"MB", 1048576.0}, {L"GB", 1073741824.0}, {L"TB", 1099511627776.0}}};
constexpr std::array<const wchar_t*, 5> PrintedSizeUnits = {L"B", L"KB", L"MB", L"GB", L"TB"};
constexpr const wchar_t* NumberCharacters = L"0123456789.+-";

}  // namespace

bool Size::Initialize(const wchar_t* text)
{
    bytes = 0;
    if (text == nullptr) {
        ReportFailure(LogWarning, L"NULL parameter.");
        return false;
    }
    try {
        const std::wstring stripped = Trim(text);
        const double number = LeadingNumber(stripped.substr(0, stripped.find_first_not_of(NumberCharacters)));
        bytes = TruncateToUnsigned(number * UnitFactor(ToUpper(stripped), ParsedSizeUnits));
        return true;
    } catch (...) {
        ReportFailure(LogWarning, L"Error while initializing Size type with value: ", text);
        return false;
    }
}

Size& Size::operator+=(const Size& other)
{
    const std::uint64_t room = std::numeric_limits<std::uint64_t>::max() - bytes;
    bytes += std::min(other.bytes, room);
    return *this;
}

const wchar_t* Size::ToString() const
{
    static std::wstring text;
    return WriteQuantity(bytes, 1024.0, PrintedSizeUnits, L"Error while formatting size string.", text);
}

Size* Size::Clone() const
{
    return CloneOf(*this);
}

}  // namespace kel
