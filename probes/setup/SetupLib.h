#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "probes/Source.h"
#include "probes/graphics/GpuInfo.h"
#include "probes/graphics/MonitorInfo.h"
#include "probes/network/NetworkInfo.h"
#include "probes/setup/SetupDevice.h"
#include "probes/setup/SetupEntryPoints.h"
#include "probes/sound/SoundInfo.h"
#include "probes/storage/DiskInfo.h"
#include "probes/storage/OpticalInfo.h"
#include "probes/storage/ScsiInfo.h"

namespace kel {

/// Closes a device set with the library's function.
struct DeviceSetCloser {
    decltype(&SetupDiDestroyDeviceInfoList) destroy = nullptr;
    void operator()(void* set) const noexcept { destroy(set); }
};
using OwnedDeviceSet = std::unique_ptr<void, DeviceSetCloser>;

/// Lists the present devices of one setup class at a time, through the Setup API ("setupapi.dll", loaded at
/// run time) and the registry keys of each device. A property or value that cannot be read leaves its field
/// empty. Without the library every listing answers false. The public operations throw nothing.
class SetupLib : public Source {
public:
    /// Fills the table of entry points; false when the library cannot be loaded.
    using Loader = boost::function<bool(SetupEntryPoints&)>;

    static SetupLib& Instance();

    SetupLib();
    /// Loads the entry points with the given function.
    explicit SetupLib(Loader newLoader);

    /// Loads the library, once.
    /// @return whether all its entry points are there
    bool Initialize();

    /// Changes the table, so that a test can replace single functions.
    void Change(const boost::function<void(SetupEntryPoints&)>& change) { change(entryPoints); }

    /// Each lists one class, appending a record for each device in the system's order. A record has the
    /// failures of its own device. A device that causes an exception is logged and left out; the later ones
    /// are listed.
    /// @return whether the device set could be opened and walked without an exception
    bool GetHardDriveInfo(std::vector<DiskInfo>& drives);
    bool GetGpuInfo(std::vector<GpuInfo>& adapters);
    bool GetScsiInfo(std::vector<ScsiInfo>& controllers);
    bool GetCDRomInfo(std::vector<OpticalInfo>& drives);
    bool GetNetworkDeviceInfo(std::vector<NetworkInfo>& adapters);
    bool GetSoundInfo(std::vector<SoundInfo>& devices);
    /// Monitors are listed whether they are active or not.
    bool GetMonitorInfo(std::vector<MonitorInfo>& monitors);

    /// The cameras that are present and work, without scanners, which are of the same class; nullopt when the
    /// list cannot be read.
    std::optional<std::int32_t> CountCameras();
    /// Whether a Bluetooth radio is present and works; nullopt when the list cannot be read.
    std::optional<bool> HasBluetooth();

private:
    /// Reads a device, and returns where the failures in it are kept; null where they explain nothing.
    using Fill = boost::function<std::vector<SourceFailure>*(const SetupDevice&)>;

    /// Calls a function for each device of a class.
    /// @param operation the name of the listing, for the log
    /// @param setFailure the error line when the set cannot be opened; null for none
    bool Enumerate(const wchar_t* operation, const GUID& deviceClass, const wchar_t* setFailure,
                   const Fill& fill);
    /// The same for a class by the first number of its GUID; most classes differ only in that number.
    bool Enumerate(const wchar_t* operation, DWORD deviceClass, const wchar_t* setFailure, const Fill& fill);

    /// Appends the record of each device of a class, with the failures in reading it.
    /// @param read fills a device's record; false for one that does not count
    template <typename Record, typename Read>
    bool List(const wchar_t* operation, DWORD deviceClass, const wchar_t* setFailure,
              std::vector<Record>& records, Read read);

    /// Opens the set of the present devices of a class.
    bool GetDeviceSet(const GUID& deviceClass, OwnedDeviceSet& set);

    NetworkInfo NetworkDevice(const SetupDevice& device) const;
    GpuInfo Gpu(const SetupDevice& device) const;
    DeviceID RefineID(const DeviceID& id, const SetupDevice& device, HKEY software) const;

    Loader loader;
    SetupEntryPoints entryPoints;
    bool initialized = false;
    DWORD loadError = ERROR_PROC_NOT_FOUND;  ///< why it is not
};

}  // namespace kel
