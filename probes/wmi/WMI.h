#pragma once

#include <wbemidl.h>
#include <windows.h>

#include <wrl/client.h>

#include <string_view>
#include <vector>

#include "probes/Source.h"
#include "probes/cpu/CpuInfo.h"
#include "probes/sound/SoundInfo.h"
#include "probes/storage/DiskInfo.h"
#include "probes/storage/OpticalInfo.h"
#include "probes/system/BiosInfo.h"
#include "probes/system/BoardInfo.h"

namespace kel {

/// Reads Windows Management Instrumentation: one connection to the local ROOT\CIMV2, opened once, and one
/// query for each kind of hardware. It relies on the apartment of the host's thread and does not change COM's
/// security. After a failed connection every query returns false and changes nothing.
class WMI : public Source {
public:
    static WMI& Instance();

    /// Connects.
    WMI();

    /// Win32_Processor, the first one: name, vendor, speed and caption. False only without a connection.
    bool GetCpuInfo(CpuInfo& info);
    /// Win32_DiskDrive, up to 200. False only without a connection.
    bool GetHardDriveValues(std::vector<DiskInfo>& drives);
    /// Win32_BIOS, the first one: name, manufacturer and version. True when one was read.
    bool GetBiosValues(BiosInfo& info);
    /// Win32_SoundDevice, the first one. True when one was read.
    bool GetSoundValues(SoundInfo& info);
    /// Win32_BaseBoard, up to 200, each overwriting the fields it has. True when one was read.
    bool GetMotherboardValues(BoardInfo& info);
    /// Win32_CDROMDrive, the first one, appended. True when one was read.
    bool GetCDRomValues(std::vector<OpticalInfo>& drives);

    /// Runs a query. A refusal leaves a warning with its result in the log.
    /// @return whether the service accepted it
    bool Query(const wchar_t* wql, IEnumWbemClassObject** result);

    /// Reads a property; one that holds null becomes the empty string.
    /// @param out an initialised VARIANT; cleared first
    /// @return whether the object has the property
    static bool GetProperty(IWbemClassObject* object, const wchar_t* name, VARIANT* out);

private:
    void Init();
    /// Notes that the class of a query could not be read.
    static void NoteFailure(std::wstring_view wql, HRESULT result);
    /// @return the first result that is a failure, or S_OK
    HRESULT Connect();

    template <typename TakeObject>
    bool ForEach(const wchar_t* wql, ULONG count, const wchar_t* errorLine, TakeObject take);

    /// Reads at most the given number of objects of a query in one call.
    std::vector<Microsoft::WRL::ComPtr<IWbemClassObject>> Read(const wchar_t* wql, ULONG count);

    bool initialised = false;
    HRESULT connected = E_FAIL;  ///< how connecting ended
    Microsoft::WRL::ComPtr<IWbemLocator> locator;
    Microsoft::WRL::ComPtr<IWbemServices> services;
};

}  // namespace kel
