#include "kit/RecordedDisplays.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <span>

#include "kit/RecordedScreens.h"
#include "kit/Text.h"
#include "probes/graphics/MonitorInfo.h"

namespace kel::kit {

namespace {

using Lines = std::vector<std::string>;

constexpr std::size_t BlockSize = 128;
constexpr DWORD MaxAdapters = 64;

/// The name that the driver of a monitor gives it.
std::string DriverNameOf(const DisplayFunctions& functions, const std::wstring& instance, DeviceMasks& masks)
{
    DISPLAY_DEVICEW adapter = {};
    adapter.cb = sizeof(adapter);
    for (DWORD index = 0; index < MaxAdapters && functions.enumDisplayDevices(nullptr, index, &adapter, 0);
         ++index) {
        DISPLAY_DEVICEW device = {};
        device.cb = sizeof(device);
        for (DWORD place = 0;
             place < MaxAdapters &&
             functions.enumDisplayDevices(adapter.DeviceName, place, &device, EDD_GET_DEVICE_INTERFACE_NAME);
             ++place) {
            if (InstanceOfPath(device.DeviceID) == instance)
                return masks.Text(device.DeviceString);
        }
    }
    return "";
}

void RecordEdid(const std::wstring& instance, DeviceMasks& masks, Lines& lines)
{
    const std::wstring parameters = L"SYSTEM\\CurrentControlSet\\Enum\\" + instance + L"\\Device Parameters";
    const std::pair<std::wstring, const wchar_t*> places[] = {{parameters + L"\\EDID_OVERRIDE", L"0"},
                                                              {parameters, L"EDID"}};
    for (const auto& [place, name] : places) {
        const OwnedKey key = OpenKey(HKEY_LOCAL_MACHINE, place.c_str(), KEY_READ);
        const std::optional<RegistryValue> value = key ? ReadValue(key.get(), name) : std::nullopt;
        if (!value)
            continue;
        const auto bytes = std::as_bytes(std::span(value->bytes));
        const auto* const first = reinterpret_cast<const BYTE*>(bytes.data());
        const std::vector<BYTE> masked = WithoutSerial({first, first + bytes.size()});
        if (masked.empty())
            continue;
        std::string line = "edid " + masks.Instance(instance) + "|";
        for (const BYTE byte : masked)
            line += Hex(byte, 2);
        lines.push_back(line);
        return;
    }
}

void RecordSession(const DisplayFunctions& functions, Lines& lines)
{
    if (functions.getSystemMetrics(SM_REMOTESESSION) != 0)
        lines.emplace_back("displays remote");
    const OwnedKey key =
        OpenKey(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\Terminal Server", KEY_READ);
    const std::optional<RegistryValue> own = key ? ReadValue(key.get(), L"GlassSessionId") : std::nullopt;
    const std::optional<DWORD> session = functions.getSession();
    DWORD number = 0;
    if (session && own && own->type == REG_DWORD && own->bytes.size() == sizeof(number)) {
        std::ranges::copy(own->bytes, reinterpret_cast<BYTE*>(&number));
        lines.push_back("session " + std::to_string(*session) + "|" + std::to_string(number));
    }
    if (const std::optional<UINT> dpi = functions.getPrimaryDpi())
        lines.push_back("dpi " + std::to_string(*dpi));
}

}  // namespace

Lines RecordDisplays(const DeviceEdges& edges, DeviceMasks& masks)
{
    const DisplayFunctions& functions = edges.displays;
    Lines lines;
    const auto [screens, hasPaths] = RecordScreens(functions, masks);
    if (screens.empty())
        return {};
    if (!hasPaths)
        lines.emplace_back("displays without paths");
    std::vector<std::wstring> instances;
    for (const Screen& screen : screens)
        instances.push_back(screen.instance);
    masks.Learn(instances);
    for (const Screen& screen : screens) {
        std::string instance = masks.Instance(screen.instance);
        std::ranges::replace(instance, '\\', '#');
        lines.push_back("screen " + (screen.fields + Field("instance", instance) +
                                     Field("device", DriverNameOf(functions, screen.instance, masks)))
                                        .substr(1));
    }
    for (const std::wstring& instance : std::set(instances.begin(), instances.end())) {
        if (!instance.empty())
            RecordEdid(instance, masks, lines);
    }
    VisitDevices(RecordedClass::Monitors, [&](const SetupDevice& device, HKEY driver) {
        const std::wstring instance = device.InstanceId();
        if (std::ranges::count(instances, instance) > 0)
            lines.push_back("monitor " + masks.Instance(instance) + "|" +
                            masks.Text(device.DeviceName().ToString()) + "|" +
                            masks.Text(DriverText(driver, L"MatchingDeviceId")));
    });
    RecordSession(functions, lines);
    return lines;
}

std::vector<BYTE> WithoutSerial(std::vector<BYTE> edid)
{
    constexpr std::size_t SerialNumber = 12;
    constexpr std::size_t Week = 16;
    constexpr std::size_t FirstDescriptor = 54;
    constexpr std::size_t DescriptorSize = 18;
    constexpr BYTE NameDescriptor = 0xFC;
    constexpr BYTE EmptyDescriptor = 0x10;
    if (edid.size() < BlockSize)
        return {};
    edid.resize(BlockSize);
    if (std::accumulate(edid.begin(), edid.end(), 0) % 256 != 0)
        return {};
    std::fill(edid.begin() + SerialNumber, edid.begin() + Week + 1, BYTE{0});
    edid[BlockSize - 2] = 0;  // no block follows
    for (std::size_t place = FirstDescriptor; place + DescriptorSize < BlockSize; place += DescriptorSize) {
        const std::span<BYTE> descriptor(edid.data() + place, DescriptorSize);
        const bool isMode = descriptor[0] != 0 || descriptor[1] != 0;
        if (isMode || descriptor[3] == NameDescriptor)
            continue;
        std::ranges::fill(descriptor, BYTE{0});
        descriptor[3] = EmptyDescriptor;
    }
    edid[BlockSize - 1] = static_cast<BYTE>(-std::accumulate(edid.begin(), edid.end() - 1, 0));
    return edid;
}

}  // namespace kel::kit
