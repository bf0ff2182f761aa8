#include "values/DeviceID.h"

#include <algorithm>
#include <string_view>

#include "values/Text.h"

namespace kel {

namespace {

constexpr std::size_t DeviceDigits = 4;
constexpr std::size_t SubsystemDigits = 8;

bool IsHexadecimal(std::wstring_view text)
{
    return text.find_first_not_of(L"0123456789ABCDEF") == std::wstring_view::npos;
}

/// The letters and digits by which ACPI names makers.
bool IsMaker(std::wstring_view text)
{
    return (text.size() == 3 || text.size() == 4) &&
           text.find_first_not_of(L"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789") == std::wstring_view::npos;
}

/// The id up to its second backslash, where the instance begins.
std::wstring WithoutInstance(const std::wstring& id)
{
    const std::size_t first = id.find(L'\\');
    return first != std::wstring::npos ? id.substr(0, id.find(L'\\', first + 1)) : id;
}

}  // namespace

DeviceID::DeviceID(const std::wstring& id) : text(MakeText(WithoutInstance(id).c_str()))
{
    ReadParts(ToUpper(Buffer(text)));
}

void DeviceID::ReadParts(const std::wstring& upperCaseId)
{
    const std::size_t backslash = upperCaseId.find(L'\\');
    const bool hasBus = backslash != std::wstring::npos;
    const std::wstring_view id(upperCaseId);
    const bool isAcpi = hasBus ? id.substr(0, backslash) == L"ACPI" : id.starts_with(L'*');
    std::wstring_view rest =
        id.substr(hasBus ? backslash + 1 : std::min<std::size_t>(id.starts_with(L'*'), 1));

    // The short ACPI form, such as PNP0C0A or ACPI0003, has no names for its parts.
    const std::size_t makerLength = rest.size() - std::min(rest.size(), DeviceDigits);
    if (isAcpi && IsMaker(rest.substr(0, makerLength)) && IsHexadecimal(rest.substr(makerLength))) {
        vendor = rest.substr(0, makerLength);
        device = rest.substr(makerLength);
        return;
    }
    while (!rest.empty()) {
        const std::wstring_view part = rest.substr(0, rest.find(L'&'));
        rest.remove_prefix(std::min(part.size() + 1, rest.size()));
        const std::size_t underscore = part.find(L'_');
        if (underscore == std::wstring_view::npos)
            continue;
        const std::wstring_view name = part.substr(0, underscore);
        const std::wstring_view number = part.substr(underscore + 1);
        const bool isDevice = number.size() == DeviceDigits && IsHexadecimal(number);
        if ((name == L"VEN" || name == L"VID") && (isAcpi ? IsMaker(number) : isDevice))
            vendor = number;
        else if ((name == L"DEV" || name == L"PID") && isDevice)
            device = number;
        else if (name == L"SUBSYS" && number.size() == SubsystemDigits && IsHexadecimal(number))
            subsystem = number;
        else if (name == L"REV" && (number.size() == 2 || isDevice) && IsHexadecimal(number))
            revision = number;
    }
}

bool DeviceID::HasValue() const
{
    return *ToString() != L'\0';
}

const wchar_t* DeviceID::ToString() const
{
    return Buffer(text);
}

}  // namespace kel
