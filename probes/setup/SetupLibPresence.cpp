// What the Setup API probe reports about whole classes, without a record for each device.
#include <algorithm>
#include <span>
#include <string_view>

#include "probes/setup/SetupLib.h"
#include "values/TextMatch.h"

namespace kel {

namespace {

constexpr GUID Cameras = {0xca3e7ab9, 0xb4c3, 0x4ae6, {0x82, 0x51, 0x57, 0x9e, 0xf9, 0x33, 0x89, 0x0f}};
constexpr GUID Images = {0x6bdd1fc6, 0x810f, 0x11d0, {0xbe, 0xc7, 0x08, 0x00, 0x2b, 0xe2, 0x09, 0x2f}};
constexpr GUID Bluetooth = {0xe0cbf06c, 0xcd8b, 0x4647, {0xbb, 0x8a, 0x26, 0x3b, 0x43, 0xf0, 0xf9, 0x74}};

/// The drivers of scanners and still cameras, which have the class of cameras.
constexpr const wchar_t* StillImageServices[] = {L"usbscan", L"WSDScan", L"scsiscan", L"serscan"};
/// The buses of network devices and software devices.
constexpr std::wstring_view ForeignBuses[] = {L"SWD\\", L"ROOT\\", L"UMB\\"};
/// The start of the ids of devices that are paired with the radio, whether they are near or not.
constexpr std::wstring_view PairedBuses[] = {L"BTH"};

bool BeginsWithAny(std::wstring_view text, std::span<const std::wstring_view> starts)
{
    return std::ranges::any_of(starts, [text](std::wstring_view start) { return text.starts_with(start); });
}

/// The flags are a number, read here as text: its lower half is the first character.
bool IsSwitchedOn(const SetupDevice& device)
{
    constexpr wchar_t Disabled = 1;  // CONFIGFLAG_DISABLED
    std::wstring flags;
    return !device.GetDeviceProperty(SPDRP_CONFIGFLAGS, flags) || flags.empty() || (flags[0] & Disabled) == 0;
}

bool IsCamera(const SetupDevice& device)
{
    const std::wstring service = device.Text(SPDRP_SERVICE).ToString();
    return IsSwitchedOn(device) && !BeginsWithAny(device.InstanceId(), ForeignBuses) &&
           std::ranges::none_of(StillImageServices, [&service](const wchar_t* stillImage) {
               return IsSameText(service, stillImage);
           });
}

bool IsRadio(const SetupDevice& device)
{
    const std::wstring id = device.InstanceId();
    return IsSwitchedOn(device) && !BeginsWithAny(id, ForeignBuses) && !BeginsWithAny(id, PairedBuses);
}

}  // namespace

std::optional<std::int32_t> SetupLib::CountCameras()
{
    std::int32_t count = 0;
    const auto add = [&count](const SetupDevice& device) -> std::vector<SourceFailure>* {
        count += IsCamera(device) ? 1 : 0;
        return nullptr;  // a property that cannot be read does not leave the count empty
    };
    const bool isWhole =
        Enumerate(L"CountCameras", Cameras, nullptr, add) && Enumerate(L"CountCameras", Images, nullptr, add);
    return isWhole ? std::optional(count) : std::nullopt;
}

std::optional<bool> SetupLib::HasBluetooth()
{
    bool isThere = false;
    const auto add = [&isThere](const SetupDevice& device) -> std::vector<SourceFailure>* {
        isThere |= IsRadio(device);
        return nullptr;
    };
    const bool isWhole = Enumerate(L"HasBluetooth", Bluetooth, nullptr, add);
    return isThere || isWhole ? std::optional(isThere) : std::nullopt;
}

}  // namespace kel
