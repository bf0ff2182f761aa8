#include "values/DeviceID.h"

#include <algorithm>
#include <string_view>

#include "values/Hexadecimal.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr std::size_t DeviceDigits = 4;
constexpr std::size_t SubsystemDigits = 8;
constexpr std::size_t VendorLetters = 4;
constexpr std::wstring_view HexadecimalDigits = L"0123456789ABCDEF";
constexpr std::wstring_view Usb = L"USB";
constexpr std::wstring_view VirtualBuses[] = {L"ROOT", L"SWD", L"VMBUS"};
constexpr std::wstring_view Microsoft = L"1414";
/// VMware, VirtualBox, virtio, Parallels, QEMU twice, Xen, Amazon's cloud.
constexpr std::wstring_view VirtualVendors[] = {L"15AD", L"80EE", L"1AF4", L"1AB8",
                                                L"1234", L"1B36", L"5853", L"1D0F"};

bool IsHexadecimal(std::wstring_view text)
{
    return text.find_first_not_of(HexadecimalDigits) == std::wstring_view::npos;
}

/// The letters and digits of ACPI's vendor names.
bool IsVendor(std::wstring_view text)
{
    return (text.size() == 3 || text.size() == 4) &&
           text.find_first_not_of(L"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789") == std::wstring_view::npos;
}

/// The text of a number whose bytes are letters and digits, the lowest byte first; empty for other numbers.
std::wstring Spell(std::uint32_t number)
{
    std::wstring spelled;
    for (; number != 0; number >>= 8)
        spelled += static_cast<wchar_t>(number & 0xFF);
    return spelled.size() == VendorLetters && IsVendor(spelled) ? spelled : std::wstring();
}

/// Removes the addresses of Bluetooth devices: twelve digits after an underscore.
std::wstring WithoutAddresses(std::wstring id)
{
    constexpr std::size_t Digits = 12;
    for (std::size_t mark = id.find(L'_'); mark != std::wstring::npos; mark = id.find(L'_', mark)) {
        const std::size_t end = std::min(id.find_first_not_of(HexadecimalDigits, mark + 1), id.size());
        if (end == mark + 1 + Digits)
            id.erase(mark, end - mark);
        else
            ++mark;
    }
    return id;
}

/// The id in upper case up to its second backslash, where the instance begins.
std::wstring WithoutInstance(const std::wstring& fullId)
{
    const std::wstring id = ToUpper(fullId);
    const std::size_t first = id.find(L'\\');
    const std::wstring kept = first != std::wstring::npos ? id.substr(0, id.find(L'\\', first + 1)) : id;
    return kept.starts_with(L"BTH") ? WithoutAddresses(kept) : kept;
}

}  // namespace

DeviceID::DeviceID(const std::wstring& id) : text(MakeText(WithoutInstance(id).c_str()))
{
    ReadParts(ToString());
}

DeviceID DeviceID::FromNumbers(std::uint32_t vendor, std::uint32_t device, std::uint32_t subsystem,
                               std::uint32_t revision)
{
    if (const std::wstring vendorText = Spell(vendor), model = Spell(device);
        !vendorText.empty() && !model.empty())
        return DeviceID(L"ACPI\\VEN_" + vendorText + L"&DEV_" + model);
    if (vendor == 0 || vendor > 0xFFFF || device > 0xFFFF || revision > 0xFF)
        return {};
    std::wstring id = L"PCI\\VEN_" + Hexadecimal(vendor, 4) + L"&DEV_" + Hexadecimal(device, 4);
    if (subsystem != 0)
        id += L"&SUBSYS_" + Hexadecimal(subsystem, 8);
    return DeviceID(id + L"&REV_" + Hexadecimal(revision, 2));
}

void DeviceID::ReadParts(const std::wstring& fullId)
{
    const std::size_t backslash = fullId.find(L'\\');
    const bool hasBus = backslash != std::wstring::npos;
    const std::wstring_view id(fullId);
    const bool isAcpi = hasBus ? id.substr(0, backslash) == L"ACPI" : id.starts_with(L'*');
    std::wstring_view rest =
        id.substr(hasBus ? backslash + 1 : std::min<std::size_t>(id.starts_with(L'*'), 1));

    // The short ACPI form, such as PNP0C0A or ACPI0003, has no names for its parts.
    const std::size_t vendorLength = rest.size() - std::min(rest.size(), DeviceDigits);
    if (isAcpi && IsVendor(rest.substr(0, vendorLength)) && IsHexadecimal(rest.substr(vendorLength))) {
        vendor = rest.substr(0, vendorLength);
        device = rest.substr(vendorLength);
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
        if ((name == L"VEN" || name == L"VID") && (isAcpi ? IsVendor(number) : isDevice))
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

std::wstring DeviceID::Bus() const
{
    const std::wstring id = ToString();
    const std::size_t backslash = id.find(L'\\');
    return backslash != std::wstring::npos ? id.substr(0, backslash) : std::wstring();
}

bool DeviceID::IsVirtual() const
{
    const std::wstring bus = Bus();
    const auto isVirtualVendor = [](std::wstring_view number) {
        return std::ranges::count(VirtualVendors, number) > 0;
    };
    // An emulated chip has a real one's vendor, and the machine's in its subsystem. Microsoft's subsystems
    // are those of its own computers.
    const std::wstring_view board = std::wstring_view(subsystem).substr(subsystem.empty() ? 0 : DeviceDigits);
    return std::ranges::count(VirtualBuses, bus) > 0 ||
           (bus != Usb && (vendor == Microsoft || isVirtualVendor(vendor) || isVirtualVendor(board)));
}

bool DeviceID::Matches(const DeviceID& other) const
{
    if (vendor.empty() || device.empty() || other.vendor.empty() || other.device.empty())
        return HasValue() && std::wstring_view(ToString()) == other.ToString();
    const auto agree = [](const std::wstring& one, const std::wstring& two) {
        return one.empty() || two.empty() || one == two;
    };
    return Bus() == other.Bus() && vendor == other.vendor && device == other.device &&
           agree(subsystem, other.subsystem) && agree(revision, other.revision);
}

const wchar_t* DeviceID::ToString() const
{
    return Buffer(text);
}

}  // namespace kel
