// The six queries of the WMI probe: which property fills which field.
#include <comutil.h>

#include "diag/Log.h"
#include "diag/LogScope.h"
#include "probes/Variant.h"
#include "probes/WMI.h"

namespace kel {

namespace {

constexpr ULONG FirstOnly = 1;
constexpr ULONG AtMost = 200;

bool ReadProperty(IWbemClassObject* object, const wchar_t* name, std::wstring& text)
{
    _variant_t value;
    const bool found = WMI::GetProperty(object, name, &value);
    if (found)
        text = VariantText(value);
    return found;
}

}  // namespace

bool WMI::GetCpuInfo(CpuInfo& info)
{
    const LogScope trace(L"kel::WMI::GetCpuInfo");
    if (!initialised)
        return false;
    try {
        for (const auto& object : Read(L"SELECT * FROM Win32_Processor", FirstOnly)) {
            if (ReadProperty(object.Get(), L"Name", info.name))
                WriteLog(LogTrace, L"WMI CPU: ", info.name);
            ReadProperty(object.Get(), L"Manufacturer", info.vendor);
            _variant_t speed;
            if (GetProperty(object.Get(), L"MaxClockSpeed", &speed))
                info.speed.Initialize((std::to_wstring(VariantUnsigned(speed)) + L" MHz").c_str());
            ReadProperty(object.Get(), L"Caption", info.caption);
        }
    } catch (...) {
        ReportFailure(LogError, L"Error in WMI CPU detection.");
    }
    return true;
}

bool WMI::GetHardDriveValues(std::vector<WmiHardDriveInfo>& drives)
{
    if (!initialised)
        return false;
    try {
        for (const auto& object : Read(L"SELECT * FROM Win32_DiskDrive", AtMost)) {
            WmiHardDriveInfo drive;
            ReadProperty(object.Get(), L"Model", drive.model);
            ReadProperty(object.Get(), L"Name", drive.deviceName);
            _variant_t index;
            if (GetProperty(object.Get(), L"Index", &index))
                drive.index = VariantSigned(index);
            drives.push_back(drive);
        }
    } catch (...) {
        return true;  // without a line: the detector has other sources
    }
    return true;
}

bool WMI::GetBiosValues(BiosInfo& info)
{
    const LogScope trace(L"kel::WMI::GetBiosValues");
    if (!initialised)
        return false;
    bool isRead = false;
    try {
        for (const auto& object : Read(L"SELECT * FROM Win32_BIOS", FirstOnly)) {
            isRead = true;
            _variant_t version;  // for the log only: support compares it with the one that is stored
            GetProperty(object.Get(), L"Version", &version);
            ReadProperty(object.Get(), L"name", info.name);  // in lower case, as it has always been asked for
            ReadProperty(object.Get(), L"Manufacturer", info.manufacturer);
            ReadProperty(object.Get(), L"SMBIOSBIOSVersion", info.version);
        }
    } catch (...) {
        return isRead;  // without a line: the detector has other sources
    }
    return isRead;
}

bool WMI::GetSoundValues(WmiSoundInfo& info)
{
    if (!initialised)
        return false;
    bool isRead = false;
    try {
        for (const auto& object : Read(L"SELECT * FROM Win32_SoundDevice", FirstOnly)) {
            isRead = true;
            ReadProperty(object.Get(), L"Name", info.deviceName);
            ReadProperty(object.Get(), L"DeviceID", info.deviceId);
        }
    } catch (...) {
        return isRead;  // without a line: the detector has other sources
    }
    return isRead;
}

bool WMI::GetMotherboardValues(BoardInfo& info)
{
    if (!initialised)
        return false;
    bool isRead = false;
    try {
        for (const auto& object : Read(L"SELECT * FROM Win32_BaseBoard", AtMost)) {
            isRead = true;
            ReadProperty(object.Get(), L"Manufacturer", info.manufacturer);
            ReadProperty(object.Get(), L"Product", info.product);
            ReadProperty(object.Get(), L"Version", info.version);
        }
    } catch (...) {
        ReportFailure(LogError, L"Error in WMI::GetMotherboardValues.");
    }
    return isRead;
}

bool WMI::GetCDRomValues(std::vector<WmiCDRomInfo>& drives)
{
    if (!initialised)
        return false;
    bool isRead = false;
    try {
        for (const auto& object : Read(L"SELECT * FROM Win32_CDROMDrive", FirstOnly)) {
            isRead = true;
            WmiCDRomInfo drive;
            ReadProperty(object.Get(), L"Name", drive.name);
            ReadProperty(object.Get(), L"PNPDeviceID", drive.deviceId);
            ReadProperty(object.Get(), L"Drive", drive.drive);
            ReadProperty(object.Get(), L"MediaType", drive.mediaType);
            drives.push_back(drive);
        }
    } catch (...) {
        ReportFailure(LogError, L"Error in WMI GetCDRomValues.");
    }
    return isRead;
}

}  // namespace kel
