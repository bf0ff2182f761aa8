// The listings of the Setup API probe: the properties and values that fill the fields of each record.
#include <optional>

#include "diag/SourceFailures.h"
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
constexpr const wchar_t* DriverKeys = L"SYSTEM\\CurrentControlSet\\Control\\Class\\";
constexpr const wchar_t* ConnectionKeys =
    L"SYSTEM\\CurrentControlSet\\Control\\Network\\{4D36E972-E325-11CE-BFC1-08002BE10318}\\";

MediaKind KindOf(const std::wstring& mediaSubType)
{
    if (mediaSubType == L"2")
        return MediaKind::Wireless;
    return mediaSubType == L"1" ? MediaKind::Lan : MediaKind::Unknown;
}

/// Whether this monitor uses Windows' generic monitor driver, whose name is in the system's language.
bool IsGenericMonitor(const SetupDevice& device)
{
    std::wstring driverKey;
    if (!device.GetDeviceProperty(SPDRP_DRIVER, driverKey))
        return false;
    const OwnedKey driver = OpenKey(HKEY_LOCAL_MACHINE, (DriverKeys + driverKey).c_str(), KEY_READ);
    const std::optional<RegistryValue> id =
        driver ? ReadValue(driver.get(), L"MatchingDeviceId") : std::nullopt;
    const std::wstring matching = id && id->IsString() ? ToUpper(id->Text()) : std::wstring();
    return matching == L"*PNP09FF" || matching == L"DEFAULT_MONITOR";
}

}  // namespace

template <typename Record, typename Read>
bool SetupLib::List(const wchar_t* operation, DWORD deviceClass, const wchar_t* setFailure,
                    std::vector<Record>& records, Read read)
{
    const auto fill = [&records, read](const SetupDevice& device) -> std::vector<SourceFailure>* {
        records.emplace_back();
        try {
            if (read(device, records.back()))
                return &records.back().failures;
        } catch (...) {
            records.pop_back();
            throw;
        }
        records.pop_back();
        return nullptr;
    };
    return Enumerate(operation, deviceClass, setFailure, fill);
}

bool SetupLib::GetHardDriveInfo(std::vector<DiskInfo>& drives)
{
    const auto read = [](const SetupDevice& device, DiskInfo& drive) {
        std::wstring className;
        if (!device.GetDeviceProperty(SPDRP_CLASS, className) || className != L"DiskDrive")
            return false;
        if (!device.IsWorking())
            return false;
        drive.friendlyName = device.Text(SPDRP_FRIENDLYNAME);
        drive.deviceId = DeviceID(device.Text(SPDRP_HARDWAREID).ToString());
        drive.instanceId = Name(device.InstanceId());
        drive.isInternal = device.IsInternal();
        return true;
    };
    return List(L"GetHardDriveInfo", DiskDrives, nullptr, drives, read);
}

bool SetupLib::GetScsiInfo(std::vector<ScsiInfo>& controllers)
{
    const auto read = [](const SetupDevice& device, ScsiInfo& controller) {
        if (!device.IsWorking())
            return false;
        controller.instanceId = device.InstanceId();
        controller.name = device.DeviceName();
        controller.deviceId = DeviceID(device.Text(SPDRP_HARDWAREID).ToString());
        controller.compatibleIds = device.Texts(SPDRP_COMPATIBLEIDS);
        if (const Name version = device.DriverVersion(); version.HasValue())
            controller.driverVersion = Version(version.ToString());
        return true;
    };
    return List(L"GetScsiInfo", ScsiControllers, nullptr, controllers, read);
}

bool SetupLib::GetCDRomInfo(std::vector<OpticalInfo>& drives)
{
    const auto read = [](const SetupDevice& device, OpticalInfo& drive) {
        drive.name = device.DeviceName();
        drive.deviceId = DeviceID(device.Text(SPDRP_HARDWAREID).ToString());
        drive.instanceId = Name(device.InstanceId());
        drive.isOff = !device.IsWorking();
        return true;
    };
    return List(L"GetCDRomInfo", CDRomDrives, L"Failed call to GetDeviceSet for GetCDRomInfo", drives, read);
}

bool SetupLib::GetSoundInfo(std::vector<SoundInfo>& devices)
{
    const auto read = [](const SetupDevice& device, SoundInfo& sound) {
        sound.instanceId = device.InstanceId();
        sound.isOff = !device.IsWorking();
        const Name name = sound.HasChosenName() ? device.Text(SPDRP_DEVICEDESC) : device.DeviceName();
        sound.name = Name(TidyText(name.ToString()));
        sound.deviceId = DeviceID(device.Text(SPDRP_HARDWAREID).ToString());
        sound.driverVersion = KnownVersion(device.DriverVersion().ToString());
        return true;
    };
    return List(L"GetSoundInfo", SoundDevices, L"Failed call to GetDeviceSet for GetSoundInfo", devices,
                read);
}

bool SetupLib::GetNetworkDeviceInfo(std::vector<NetworkInfo>& adapters)
{
    const auto read = [this](const SetupDevice& device, NetworkInfo& adapter) {
        adapter = NetworkDevice(device);
        return true;
    };
    // The line names the sound listing; support tools search for it.
    return List(L"GetNetworkDeviceInfo", NetworkAdapters, L"Failed call to GetDeviceSet for GetSoundInfo",
                adapters, read);
}

bool SetupLib::GetGpuInfo(std::vector<GpuInfo>& adapters)
{
    const auto read = [this](const SetupDevice& device, GpuInfo& adapter) {
        if (!device.IsWorking())
            return false;
        adapter = Gpu(device);
        return true;
    };
    return List(L"GetGpuInfo", DisplayAdapters, L"Failed call to GetDeviceSet for GetGpuInfo", adapters,
                read);
}

bool SetupLib::GetMonitorInfo(std::vector<MonitorInfo>& monitors)
{
    const auto read = [](const SetupDevice& device, MonitorInfo& monitor) {
        monitor.instance = device.InstanceId();
        monitor.deviceId = DeviceID(monitor.instance);
        monitor.isGeneric = IsGenericMonitor(device);
        if (!monitor.isGeneric)
            monitor.name = Name(TidyText(device.DeviceName().ToString()));
        return true;
    };
    return List(L"GetMonitorInfo", Monitors, nullptr, monitors, read);
}

NetworkInfo SetupLib::NetworkDevice(const SetupDevice& device) const
{
    NetworkInfo adapter;
    adapter.name = Name(TidyText(device.DeviceName().ToString()));
    adapter.deviceId = DeviceID(device.Text(SPDRP_HARDWAREID).ToString());
    adapter.device = device.InstanceId();
    adapter.enumerator = DeviceID(adapter.device).Bus();
    adapter.isOff = !device.IsWorking();
    adapter.isInternal = device.IsInternal();
    std::wstring driverKey;
    if (!device.GetDeviceProperty(SPDRP_DRIVER, driverKey))
        return adapter;
    const OwnedKey driver = OpenKey(HKEY_LOCAL_MACHINE, (DriverKeys + driverKey).c_str(), KEY_READ);
    adapter.driverVersion = KnownVersion(ReadFirstText({{driver.get(), nullptr, DriverVersionValue}}));
    const std::wstring instance = ReadFirstText({{driver.get(), nullptr, L"NetCFGInstanceID"}});
    adapter.instanceId = ToUpper(instance);
    if (instance.empty())
        return adapter;
    const OwnedKey connection =
        OpenKey(HKEY_LOCAL_MACHINE, (ConnectionKeys + instance + L"\\Connection").c_str(), KEY_READ);
    const std::optional<RegistryValue> value =
        connection ? ReadValue(connection.get(), L"MediaSubType") : std::nullopt;
    if (value && value->type == REG_DWORD) {
        adapter.SetKind(KindOf(ReadFirstText({{connection.get(), nullptr, L"MediaSubType"}})));
        adapter.hasKind = adapter.kind.HasValue();
    }
    return adapter;
}

}  // namespace kel
