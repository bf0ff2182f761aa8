// The listings of the Setup API probe: the properties and values that fill the fields of each record.
#include "diag/Log.h"
#include "probes/setup/InfFile.h"
#include "probes/setup/SetupLib.h"
#include "values/Junk.h"
#include "values/Text.h"

namespace kel {

namespace {

enum SetupClass : DWORD {
    CDRomDrives = 0x4D36E965,
    DiskDrives = 0x4D36E967,
    DisplayAdapters = 0x4D36E968,
    SoundDevices = 0x4D36E96C,
    Monitors = 0x4D36E96E,
    NetworkAdapters = 0x4D36E972,
    ScsiControllers = 0x4D36E97B,
};

constexpr const wchar_t* DriverVersionValue = L"DriverVersion";
constexpr const wchar_t* InfoSubkey = L"info";
constexpr const wchar_t* DriverKeys = L"SYSTEM\\CurrentControlSet\\Control\\Class\\";
constexpr const wchar_t* ConnectionKeys =
    L"SYSTEM\\CurrentControlSet\\Control\\Network\\{4D36E972-E325-11CE-BFC1-08002BE10318}\\";
constexpr const wchar_t* IntelVendor = L"8086";
/// The length of the bus prefix of a disk's hardware id, such as "IDE\Disk".
constexpr std::size_t BusPrefixLength = 8;

/// A place of a value below a device's keys.
struct Place {
    HKEY key;
    const wchar_t* subkey;
    const wchar_t* name;
};

/// The text of the first place that has one.
std::wstring FirstText(std::initializer_list<Place> places)
{
    std::wstring text;
    for (const Place& place : places) {
        if (ReadRegistryValue(place.key, place.subkey, place.name, text) && !text.empty())
            break;
    }
    return text;
}

/// The amount of the first place that has one above 0.
std::optional<Size> FirstSize(std::initializer_list<Place> places)
{
    Size size;
    for (const Place& place : places) {
        if (ReadRegistrySize(place.key, place.subkey, place.name, size) && size.Bytes() != 0)
            return size;
    }
    return {};
}

MediaKind KindOf(const std::wstring& mediaSubType)
{
    if (mediaSubType == L"2")
        return MediaKind::Wireless;
    return mediaSubType == L"1" ? MediaKind::Lan : MediaKind::Unknown;
}

}  // namespace

bool SetupLib::GetHardDriveInfo(std::vector<DiskInfo>& drives)
{
    return Enumerate(L"GetHardDriveInfo", DiskDrives, nullptr, [&](const SetupDevice& device) {
        std::wstring className;
        if (!device.GetDeviceProperty(SPDRP_CLASS, className) || className != L"DiskDrive")
            return;
        DiskInfo drive;
        drive.friendlyName = device.Text(SPDRP_FRIENDLYNAME);
        std::wstring id;
        if (device.GetDeviceProperty(SPDRP_HARDWAREID, id) && id.size() >= BusPrefixLength)
            drive.model = Name(id.substr(BusPrefixLength));
        drive.deviceId = DeviceID(id);
        drive.instanceId = Name(device.InstanceId());
        drives.push_back(drive);
    });
}

bool SetupLib::GetScsiInfo(std::vector<ScsiInfo>& controllers)
{
    return Enumerate(L"GetScsiInfo", ScsiControllers, nullptr, [&](const SetupDevice& device) {
        ScsiInfo controller;
        controller.name = device.DeviceName();
        controller.deviceId = DeviceID(device.Text(SPDRP_HARDWAREID).ToString());
        controller.compatibleIds = device.Texts(SPDRP_COMPATIBLEIDS);
        if (const Name version = device.DriverVersion(); version.HasValue())
            controller.driverVersion = Version(version.ToString());
        controllers.push_back(controller);
    });
}

bool SetupLib::GetCDRomInfo(std::vector<OpticalInfo>& drives)
{
    return Enumerate(L"GetCDRomInfo", CDRomDrives, L"Failed call to GetDeviceSet for GetCDRomInfo",
                     [&](const SetupDevice& device) {
                         OpticalInfo drive;
                         drive.name = device.DeviceName();
                         drive.deviceId = DeviceID(device.Text(SPDRP_HARDWAREID).ToString());
                         drive.instanceId = Name(device.InstanceId());
                         drives.push_back(drive);
                     });
}

bool SetupLib::GetSoundInfo(std::vector<SoundInfo>& devices)
{
    return Enumerate(L"GetSoundInfo", SoundDevices, L"Failed call to GetDeviceSet for GetSoundInfo",
                     [&](const SetupDevice& device) {
                         SoundInfo sound;
                         sound.instanceId = device.InstanceId();
                         const Name name =
                             sound.HasChosenName() ? device.Text(SPDRP_DEVICEDESC) : device.DeviceName();
                         sound.name = Name(TidyText(name.ToString()));
                         sound.deviceId = DeviceID(device.Text(SPDRP_HARDWAREID).ToString());
                         sound.driverVersion = KnownVersion(device.DriverVersion().ToString());
                         devices.push_back(sound);
                     });
}

bool SetupLib::GetNetworkDeviceInfo(std::vector<NetworkInfo>& adapters)
{
    // The line names the sound listing; support tools search for it.
    return Enumerate(L"GetNetworkDeviceInfo", NetworkAdapters,
                     L"Failed call to GetDeviceSet for GetSoundInfo",
                     [&](const SetupDevice& device) { adapters.push_back(NetworkDevice(device)); });
}

bool SetupLib::GetGpuInfo(std::vector<GpuInfo>& adapters)
{
    return Enumerate(L"GetGpuInfo", DisplayAdapters, L"Failed call to GetDeviceSet for GetGpuInfo",
                     [&](const SetupDevice& device) { adapters.push_back(Gpu(device)); });
}

bool SetupLib::GetMonitorInfo(std::vector<MonitorInfo>& monitors)
{
    return Enumerate(L"GetMonitorInfo", Monitors, nullptr, [&](const SetupDevice& device) {
        MonitorInfo monitor;
        monitor.instance = device.InstanceId();
        monitor.deviceId = DeviceID(monitor.instance);
        monitor.name = Name(TidyText(device.DeviceName().ToString()));
        monitors.push_back(monitor);
    });
}

NetworkInfo SetupLib::NetworkDevice(const SetupDevice& device) const
{
    NetworkInfo adapter;
    adapter.name = Name(TidyText(device.DeviceName().ToString()));
    adapter.deviceId = DeviceID(device.Text(SPDRP_HARDWAREID).ToString());
    adapter.enumerator = DeviceID(device.InstanceId()).Bus();
    std::wstring location;
    device.GetDeviceProperty(SPDRP_LOCATION_INFORMATION, location);
    adapter.isOnBus = ToLower(location).find(L"pci bus 0") != std::wstring::npos;

    std::wstring driverKey;
    if (!device.GetDeviceProperty(SPDRP_DRIVER, driverKey))
        return adapter;
    const OwnedKey driver = OpenKey(HKEY_LOCAL_MACHINE, (DriverKeys + driverKey).c_str(), KEY_READ);
    adapter.driverVersion = KnownVersion(FirstText({{driver.get(), nullptr, DriverVersionValue}}));
    const std::wstring instance = FirstText({{driver.get(), nullptr, L"NetCFGInstanceID"}});
    adapter.instanceId = ToUpper(instance);
    if (instance.empty())
        return adapter;
    const OwnedKey connection =
        OpenKey(HKEY_LOCAL_MACHINE, (ConnectionKeys + instance + L"\\Connection").c_str(), KEY_READ);
    const std::optional<RegistryValue> value =
        connection ? ReadValue(connection.get(), L"MediaSubType") : std::nullopt;
    if (value && value->type == REG_DWORD) {
        const std::wstring subType = FirstText({{connection.get(), nullptr, L"MediaSubType"}});
        adapter.mediaSubType = Name(subType);
        adapter.SetKind(KindOf(subType));
    }
    return adapter;
}

GpuInfo SetupLib::Gpu(const SetupDevice& device) const
{
    GpuInfo adapter;
    adapter.description = Name(TidyText(device.Text(SPDRP_DEVICEDESC).ToString()));
    adapter.deviceId = DeviceID(device.Text(SPDRP_HARDWAREID).ToString());
    DeviceKeys keys;
    if (!device.OpenDeviceKeys(keys))
        return adapter;
    const HKEY hardware = keys.hardware.get();
    const HKEY software = keys.software.get();
    if (!adapter.description.HasValue())
        adapter.description = Name(
            TidyText(FirstText({{hardware, nullptr, L"DeviceDesc"}, {software, nullptr, L"DeviceDesc"}})));
    adapter.driverVersion =
        KnownVersion(FirstText({{software, nullptr, L"Ver"}, {software, nullptr, DriverVersionValue}}));
    adapter.chipType = Name(FirstText(
        {{software, InfoSubkey, L"ChipType"}, {software, nullptr, L"HardwareInformation.ChipType"}}));
    adapter.dacType = Name(
        FirstText({{software, InfoSubkey, L"DACType"}, {software, nullptr, L"HardwareInformation.DacType"}}));
    adapter.driverDescription = Name(FirstText({{software, nullptr, L"DriverDesc"}}));
    WriteLog(LogTrace, L"DriverDesc: ", adapter.driverDescription.ToString());
    adapter.videoMemory = FirstSize({{software, nullptr, L"HardwareInformation.qwMemorySize"},
                                     {software, nullptr, L"HardwareInformation.MemorySize"},
                                     {software, InfoSubkey, L"VideoMemory"}});

    const std::wstring id =
        FirstText({{hardware, nullptr, L"MatchingDeviceID"}, {software, nullptr, L"MatchingDeviceID"}});
    WriteLog(LogTrace, L"Got device ID: ", id);
    // The basic display driver matches any adapter, so the device's own id counts here.
    if (const DeviceID matching(id); !matching.Vendor().empty() || !adapter.deviceId.HasValue())
        adapter.deviceId = matching;
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
    const std::wstring path = FirstText({{software, nullptr, L"InfPath"}});
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
