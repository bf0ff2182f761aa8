#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <memory>
#include <string>
#include <vector>

#include "platform/RegistryValue.h"
#include "probes/SetupDeviceInfos.h"
#include "probes/SetupEntryPoints.h"
#include "probes/Source.h"

namespace kel {

/// Closes a device set with the function that the library gave.
struct DeviceSetCloser {
    decltype(&SetupDiDestroyDeviceInfoList) destroy = nullptr;
    void operator()(void* set) const noexcept { destroy(set); }
};
using OwnedDeviceSet = std::unique_ptr<void, DeviceSetCloser>;

/// The registry keys of a device: its own and its driver's.
struct DeviceKeys {
    OwnedKey hardware;
    OwnedKey software;
};

/// Lists the present devices of one setup class at a time, through the Setup API ("setupapi.dll", loaded at
/// run time) and the registry keys of each device. A property or value that cannot be read leaves its field
/// empty. Without the library every listing answers false. The public operations throw nothing.
class SetupLib : public Source {
public:
    /// Fills the table of entry points; false when the library cannot be loaded.
    using Loader = boost::function<bool(SetupEntryPoints&)>;

    static SetupLib& Instance();

    SetupLib();
    /// Loads through another function than the system's.
    explicit SetupLib(Loader newLoader);

    /// Loads the library, once.
    /// @return whether all its entry points are there
    bool Initialize();

    /// Each lists one class, appending a record for each device in the system's order.
    /// @return whether the device set could be opened and walked
    bool GetHardDriveInfo(std::vector<SetupHardDriveInfo>& drives);
    bool GetGpuInfo(std::vector<SetupGpuInfo>& adapters);
    bool GetScsiInfo(std::vector<SetupScsiInfo>& controllers);
    bool GetCDRomInfo(std::vector<SetupCDRomInfo>& drives);
    bool GetNetworkDeviceInfo(std::vector<SetupNetworkInfo>& adapters);
    bool GetSoundInfo(std::vector<SetupSoundInfo>& devices);

    /// Reads a value of at most 1000 bytes as text: a string, the first string of a list, or a 32-bit number
    /// in decimal. A 64-bit number gives an empty text.
    /// @param key null gives false without a warning, as does a subkey that cannot be opened
    /// @param subkey below the key; null or empty for the key itself
    /// @return false, with an empty text and a warning in the log, for every other value and for a missing
    /// one
    static bool ReadRegistryValue(HKEY key, const wchar_t* subkey, const wchar_t* name, std::wstring& text);

    /// Reads an amount of memory in bytes: a number of 32 or 64 bits, up to 8 binary bytes, lowest first, or
    /// a decimal text. Parameters and result as for ReadRegistryValue.
    static bool ReadRegistrySize(HKEY key, const wchar_t* subkey, const wchar_t* name, Size& size);

private:
    using Fill = boost::function<void(HDEVINFO, SP_DEVINFO_DATA&)>;

    /// Calls a function for each device of a class.
    /// @param operation the name of the listing, for the log
    /// @param setFailure the error line when the set cannot be opened; null for none
    bool Enumerate(const wchar_t* operation, DWORD deviceClass, const wchar_t* setFailure, const Fill& fill);

    /// Opens the set of the present devices of a class.
    bool GetDeviceSet(const GUID& deviceClass, OwnedDeviceSet& set);

    /// Reads a text property (SPDRP_...), of a list the first text.
    /// @param text untouched when the property cannot be read
    bool GetDeviceProperty(HDEVINFO set, SP_DEVINFO_DATA& device, DWORD property, std::wstring& text);

    /// Opens both keys of a device for reading; false, with a warning in the log, unless both are open.
    bool OpenDeviceKeys(HDEVINFO set, SP_DEVINFO_DATA& device, DeviceKeys& keys);

    Name TextProperty(HDEVINFO set, SP_DEVINFO_DATA& device, DWORD property);
    Name DeviceName(HDEVINFO set, SP_DEVINFO_DATA& device);
    Name DriverVersion(HDEVINFO set, SP_DEVINFO_DATA& device);
    SetupGpuInfo Gpu(HDEVINFO set, SP_DEVINFO_DATA& device);
    SetupNetworkInfo NetworkDevice(HDEVINFO set, SP_DEVINFO_DATA& device);
    DeviceID RefinedID(const DeviceID& id, HKEY software) const;

    Loader loader;
    SetupEntryPoints entryPoints;
    bool initialized = false;
};

}  // namespace kel
