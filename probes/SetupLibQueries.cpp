// The six listings of the Setup API probe: which property and which value fills which field.
#include "diag/Log.h"
#include "probes/InfFile.h"
#include "probes/SetupLib.h"
#include "values/Text.h"

namespace kel {

namespace {

enum SetupClass : DWORD {
    CDRomDrives = 0x4D36E965,
    DiskDrives = 0x4D36E967,
    DisplayAdapters = 0x4D36E968,
    SoundDevices = 0x4D36E96C,
    NetworkAdapters = 0x4D36E972,
    ScsiControllers = 0x4D36E97B,
};

constexpr const wchar_t* DriverVersionValue = L"DriverVersion";
constexpr const wchar_t* InfoSubkey = L"info";
constexpr const wchar_t* DriverKeys = L"SYSTEM\\CurrentControlSet\\Control\\Class\\";
constexpr const wchar_t* ConnectionKeys =
    L"SYSTEM\\CurrentControlSet\\Control\\Network\\{4D36E972-E325-11CE-BFC1-08002BE10318}\\";
constexpr const wchar_t* IntelVendor = L"8086";
/// Of a disk's hardware id, such as the eight characters of "IDE\Disk".
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
        if (SetupLib::ReadRegistryValue(place.key, place.subkey, place.name, text) && !text.empty())
            break;
    }
    return text;
}

MediaKind KindOf(const std::wstring& mediaSubType)
{
    if (mediaSubType == L"2")
        return MediaKind::Wireless;
    return mediaSubType == L"1" ? MediaKind::Lan : MediaKind::Unknown;
}

}  // namespace

bool SetupLib::GetHardDriveInfo(std::vector<SetupHardDriveInfo>& drives)
{
    return Enumerate(L"GetHardDriveInfo", DiskDrives, nullptr, [&](HDEVINFO set, SP_DEVINFO_DATA& device) {
        std::wstring className;
        if (!GetDeviceProperty(set, device, SPDRP_CLASS, className) || className != L"DiskDrive")
            return;
        SetupHardDriveInfo drive;
        drive.friendlyName = TextProperty(set, device, SPDRP_FRIENDLYNAME);
        std::wstring id;
        if (GetDeviceProperty(set, device, SPDRP_HARDWAREID, id) && id.size() >= BusPrefixLength)
            drive.model = Name(id.substr(BusPrefixLength));
        drives.push_back(drive);
    });
}

bool SetupLib::GetScsiInfo(std::vector<SetupScsiInfo>& controllers)
{
    return Enumerate(L"GetScsiInfo", ScsiControllers, nullptr, [&](HDEVINFO set, SP_DEVINFO_DATA& device) {
        SetupScsiInfo controller;
        controller.hardwareId = TextProperty(set, device, SPDRP_HARDWAREID);
        controller.driverVersion = DriverVersion(set, device);
        controllers.push_back(controller);
    });
}

bool SetupLib::GetCDRomInfo(std::vector<SetupCDRomInfo>& drives)
{
    return Enumerate(L"GetCDRomInfo", CDRomDrives, L"Failed call to GetDeviceSet for GetCDRomInfo",
                     [&](HDEVINFO set, SP_DEVINFO_DATA& device) {
                         SetupCDRomInfo drive;
                         drive.name = DeviceName(set, device);
                         drive.hardwareId = TextProperty(set, device, SPDRP_HARDWAREID);
                         drives.push_back(drive);
                     });
}

bool SetupLib::GetSoundInfo(std::vector<SetupSoundInfo>& devices)
{
    return Enumerate(L"GetSoundInfo", SoundDevices, L"Failed call to GetDeviceSet for GetSoundInfo",
                     [&](HDEVINFO set, SP_DEVINFO_DATA& device) {
                         SetupSoundInfo sound;
                         sound.name = DeviceName(set, device);
                         sound.hardwareId = TextProperty(set, device, SPDRP_HARDWAREID);
                         sound.driverVersion = DriverVersion(set, device);
                         devices.push_back(sound);
                     });
}

bool SetupLib::GetNetworkDeviceInfo(std::vector<SetupNetworkInfo>& adapters)
{
    // The line names the sound listing; support tools look for it as it is.
    return Enumerate(
        L"GetNetworkDeviceInfo", NetworkAdapters, L"Failed call to GetDeviceSet for GetSoundInfo",
        [&](HDEVINFO set, SP_DEVINFO_DATA& device) { adapters.push_back(NetworkDevice(set, device)); });
}

bool SetupLib::GetGpuInfo(std::vector<SetupGpuInfo>& adapters)
{
    return Enumerate(L"GetGpuInfo", DisplayAdapters, L"Failed call to GetDeviceSet for GetGpuInfo",
                     [&](HDEVINFO set, SP_DEVINFO_DATA& device) { adapters.push_back(Gpu(set, device)); });
}

Name SetupLib::TextProperty(HDEVINFO set, SP_DEVINFO_DATA& device, DWORD property)
{
    std::wstring text;
    GetDeviceProperty(set, device, property, text);
    return Name(text);
}

Name SetupLib::DeviceName(HDEVINFO set, SP_DEVINFO_DATA& device)
{
    const Name friendly = TextProperty(set, device, SPDRP_FRIENDLYNAME);
    return friendly.HasValue() ? friendly : TextProperty(set, device, SPDRP_DEVICEDESC);
}

Name SetupLib::DriverVersion(HDEVINFO set, SP_DEVINFO_DATA& device)
{
    DeviceKeys keys;
    return OpenDeviceKeys(set, device, keys)
               ? Name(FirstText({{keys.software.get(), nullptr, DriverVersionValue}}))
               : Name();
}

SetupNetworkInfo SetupLib::NetworkDevice(HDEVINFO set, SP_DEVINFO_DATA& device)
{
    SetupNetworkInfo adapter;
    adapter.name = DeviceName(set, device);
    adapter.hardwareId = TextProperty(set, device, SPDRP_HARDWAREID);
    std::wstring location;
    GetDeviceProperty(set, device, SPDRP_LOCATION_INFORMATION, location);
    adapter.isOnBus = ToLower(location).find(L"pci bus 0") != std::wstring::npos;

    std::wstring driverKey;
    if (!GetDeviceProperty(set, device, SPDRP_DRIVER, driverKey))
        return adapter;
    const OwnedKey driver = OpenKey(HKEY_LOCAL_MACHINE, (DriverKeys + driverKey).c_str(), KEY_READ);
    adapter.driverVersion = Name(FirstText({{driver.get(), nullptr, DriverVersionValue}}));
    const std::wstring instance = FirstText({{driver.get(), nullptr, L"NetCFGInstanceID"}});
    adapter.instanceId = Name(instance);
    if (instance.empty())
        return adapter;
    const OwnedKey connection =
        OpenKey(HKEY_LOCAL_MACHINE, (ConnectionKeys + instance + L"\\Connection").c_str(), KEY_READ);
    const std::optional<RegistryValue> value =
        connection ? ReadValue(connection.get(), L"MediaSubType") : std::nullopt;
    if (value && value->type == REG_DWORD) {
        const std::wstring subType = FirstText({{connection.get(), nullptr, L"MediaSubType"}});
        adapter.mediaSubType = Name(subType);
        adapter.mediaKind = KindOf(subType);
    }
    return adapter;
}

SetupGpuInfo SetupLib::Gpu(HDEVINFO set, SP_DEVINFO_DATA& device)
{
    SetupGpuInfo adapter;
    adapter.description = TextProperty(set, device, SPDRP_DEVICEDESC);
    DeviceKeys keys;
    if (!OpenDeviceKeys(set, device, keys))
        return adapter;
    const HKEY hardware = keys.hardware.get();
    const HKEY software = keys.software.get();
    if (!adapter.description.HasValue())
        adapter.description =
            Name(FirstText({{hardware, nullptr, L"DeviceDesc"}, {software, nullptr, L"DeviceDesc"}}));
    adapter.driverVersion =
        Name(FirstText({{software, nullptr, L"Ver"}, {software, nullptr, DriverVersionValue}}));
    adapter.chipType = Name(FirstText(
        {{software, InfoSubkey, L"ChipType"}, {software, nullptr, L"HardwareInformation.ChipType"}}));
    adapter.dacType = Name(
        FirstText({{software, InfoSubkey, L"DACType"}, {software, nullptr, L"HardwareInformation.DacType"}}));
    adapter.driverDescription = Name(FirstText({{software, nullptr, L"DriverDesc"}}));
    WriteLog(LogTrace, L"DriverDesc: ", adapter.driverDescription.ToString());
    ReadRegistrySize(software, InfoSubkey, L"VideoMemory", adapter.videoMemory);

    const std::wstring id =
        FirstText({{hardware, nullptr, L"MatchingDeviceID"}, {software, nullptr, L"MatchingDeviceID"}});
    adapter.deviceId = DeviceID(id);
    WriteLog(LogTrace, L"Got device ID: ", id);
    if (adapter.deviceId.Vendor() == IntelVendor) {
        WriteLog(LogTrace, L"Is Intel.");
        adapter.deviceId = RefinedID(adapter.deviceId, software);
    }
    return adapter;
}

/// Looks the device up in the INF file of its driver, which may tell it better than the registry does.
DeviceID SetupLib::RefinedID(const DeviceID& id, HKEY software) const
{
    const std::wstring path = FirstText({{software, nullptr, L"InfPath"}});
    WriteLog(LogTrace, L"Inf Path: ", path);
    if (id.Device().empty())
        return id;  // any id of the maker's would match
    const InfFile inf(entryPoints, path);
    const std::wstring found =
        inf.FindModel(L"ven_" + ToLower(id.Vendor()) + L"&dev_" + ToLower(id.Device()));
    if (found.empty())
        return id;
    WriteLog(LogTrace, L"Got 2ID: ", found);
    return DeviceID(found);
}

}  // namespace kel
