// The listing of graphics adapters by the Setup API, with the values in their drivers' keys.
#include "diag/Log.h"
#include "probes/setup/DriverDate.h"
#include "probes/setup/InfFile.h"
#include "probes/setup/SetupLib.h"
#include "values/Junk.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr const wchar_t* AdapterVersionValue = L"DriverVersion";
constexpr const wchar_t* InfoSubkey = L"info";
constexpr const wchar_t* IntelVendor = L"8086";
constexpr const wchar_t* AmdVendor = L"1002";
constexpr std::size_t MaxTextSize = 1000;  // bytes

/// The first amount above 0. A driver has one of the amounts or the other, so a missing one is not worth a
/// warning.
std::optional<Size> DriverMemory(HKEY key)
{
    Size size;
    for (const wchar_t* name : {L"HardwareInformation.qwMemorySize", L"HardwareInformation.MemorySize"}) {
        if (ReadValue(key, name) && ReadRegistrySize(key, nullptr, name, size) && size.Bytes() != 0)
            return size;
    }
    const bool isRead = ReadRegistrySize(key, InfoSubkey, L"VideoMemory", size) && size.Bytes() != 0;
    return isRead ? std::optional(size) : std::nullopt;
}

/// A text, or the first one of a list. Most drivers lack it, so a missing one is not worth a warning.
std::wstring QuietText(HKEY key, const wchar_t* name)
{
    const std::optional<RegistryValue> value = ReadValue(key, name);
    return value && (value->IsString() || value->type == REG_MULTI_SZ) && value->bytes.size() <= MaxTextSize
               ? value->Text()
               : std::wstring();
}

/// The driver's name of a part of the hardware. AMD's and Intel's drivers write it as bytes.
std::wstring HardwareText(HKEY key, const wchar_t* infoName, const wchar_t* name)
{
    const std::wstring text = ReadFirstText({{key, InfoSubkey, infoName}});
    if (!text.empty())
        return text;
    const std::optional<RegistryValue> value = ReadValue(key, name);
    if (value && value->type == REG_BINARY && value->bytes.size() <= MaxTextSize)
        return TidyText(value->Text());
    return ReadFirstText({{key, nullptr, name}});
}

}  // namespace

GpuInfo SetupLib::Gpu(const SetupDevice& device) const
{
    GpuInfo adapter;
    adapter.description = Name(TidyText(device.Text(SPDRP_DEVICEDESC).ToString()));
    adapter.deviceId = DeviceID(device.Text(SPDRP_HARDWAREID).ToString());
    adapter.instanceId = device.InstanceId();
    DeviceKeys keys;
    if (!device.OpenDeviceKeys(keys))
        return adapter;
    const HKEY hardware = keys.hardware.get();
    const HKEY software = keys.software.get();
    if (!adapter.description.HasValue())
        adapter.description = Name(TidyText(
            ReadFirstText({{hardware, nullptr, L"DeviceDesc"}, {software, nullptr, L"DeviceDesc"}})));
    adapter.driverVersion =
        KnownVersion(ReadFirstText({{software, nullptr, L"Ver"}, {software, nullptr, AdapterVersionValue}}));
    adapter.chipType = Name(HardwareText(software, L"ChipType", L"HardwareInformation.ChipType"));
    adapter.dacType = Name(HardwareText(software, L"DACType", L"HardwareInformation.DacType"));
    adapter.driverDescription = Name(ReadFirstText({{software, nullptr, L"DriverDesc"}}));
    WriteLog(LogTrace, L"DriverDesc: ", adapter.driverDescription.ToString());
    adapter.driverMemory = DriverMemory(software);

    const std::wstring id =
        ReadFirstText({{hardware, nullptr, L"MatchingDeviceID"}, {software, nullptr, L"MatchingDeviceID"}});
    WriteLog(LogTrace, L"Got device ID: ", id);
    // The basic display driver matches any adapter, so the device's own id counts here.
    if (const DeviceID matching(id); !matching.Vendor().empty() || !adapter.deviceId.HasValue())
        adapter.deviceId = matching;
    if (adapter.deviceId.Vendor() == AmdVendor)
        adapter.vendorVersion = KnownVersion(QuietText(software, L"RadeonSoftwareVersion"));
    adapter.driverDate = Name(ReadDriverDate(QuietText(software, L"DriverDate")));
    adapter.vulkanManifest = QuietText(software, L"VulkanDriverName");
    if (adapter.deviceId.Vendor() == IntelVendor) {
        WriteLog(LogTrace, L"Is Intel.");
        adapter.deviceId = RefineID(adapter.deviceId, device, software);
    }
    return adapter;
}

/// Looks the device up in the INF file of its driver, which may have a more exact id than the registry. Only
/// an id that the device itself has counts, as the file lists related devices, too.
DeviceID SetupLib::RefineID(const DeviceID& id, const SetupDevice& device, HKEY software) const
{
    const std::wstring path = ReadFirstText({{software, nullptr, L"InfPath"}});
    WriteLog(LogTrace, L"Inf Path: ", path);
    if (id.Device().empty())
        return id;  // any id of the vendor would match
    const InfFile inf(entryPoints, path);
    const std::wstring found = inf.FindModel(L"ven_" + ToLower(id.Vendor()) + L"&dev_" + ToLower(id.Device()),
                                             device.Texts(SPDRP_HARDWAREID));
    if (found.empty())
        return id;
    WriteLog(LogTrace, L"Got 2ID: ", found);
    return DeviceID(found);
}

}  // namespace kel
