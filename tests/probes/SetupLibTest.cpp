#include "probes/setup/SetupLib.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <span>

#include "support/LogCapture.h"
#include "support/PlantedDevice.h"
#include "support/Split.h"

namespace kel {
namespace {

using namespace std::string_literals;
using test::PlantedDevice;
using Lines = std::vector<std::wstring>;
using Table = SetupEntryPoints;

constexpr test::DeviceClass Disks = test::DiskClass, Displays = test::DisplayClass,
                            Networks = test::NetworkClass, Scsis = test::ScsiClass;

template <typename Info>
std::vector<Info> List(bool (SetupLib::*list)(std::vector<Info>&))
{
    std::vector<Info> infos;
    EXPECT_TRUE((SetupLib::Instance().*list)(infos));
    return infos;
}

/// The texts of values, each with a bar after it.
template <typename... Values>
std::wstring Joined(const Values&... values)
{
    return ((std::wstring(values.ToString()) + L"|") + ...);
}

/// What all listings return, "1" for true, and whether the last two know an answer.
std::string AskAll(SetupLib& library)
{
    std::vector<DiskInfo> disks;
    std::vector<GpuInfo> adapters;
    std::vector<ScsiInfo> controllers;
    std::vector<OpticalInfo> drives;
    std::vector<NetworkInfo> networks;
    std::vector<SoundInfo> sounds;
    std::string results;
    for (const bool result :
         {library.GetHardDriveInfo(disks), library.GetGpuInfo(adapters), library.GetScsiInfo(controllers),
          library.GetCDRomInfo(drives), library.GetNetworkDeviceInfo(networks), library.GetSoundInfo(sounds),
          library.CountCameras().has_value(), library.HasBluetooth().has_value()})
        results += result ? '1' : '0';
    return results;
}

TEST(SetupLib, ReadsTheKindOfANetworkFromItsConnection)
{
    const std::wstring connections =
        L"SYSTEM\\CurrentControlSet\\Control\\Network\\{4D36E972-E325-11CE-BFC1-08002BE10318}\\";
    const std::tuple<DWORD, const wchar_t*, const wchar_t*> rows[] = {{REG_DWORD, L"\1", L"wired"},
                                                                      {REG_DWORD, L"\2", L"wireless"},
                                                                      {REG_DWORD, L"\3", L""},
                                                                      {REG_SZ, L"2", L""}};
    for (const auto& [type, bytes, kind] : rows) {
        PlantedDevice adapter(Networks);
        adapter.Driver(L"NetCFGInstanceID", L"{kt1}");
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, (connections + L"{kt1}\\Connection").c_str(), L"MediaSubType",
                        type, bytes, sizeof(DWORD));
        const NetworkInfo info = List(&SetupLib::GetNetworkDeviceInfo).at(0);
        EXPECT_STREQ(info.kind.ToString(), kind);
        EXPECT_EQ(info.hasKind, info.kind.HasValue());
        EXPECT_EQ(info.instanceId, L"{KT1}");
    }
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, (connections + L"{kt1}").c_str());
}

TEST(SetupLib, ListsDisplayAdaptersWithTheirFallbacks)
{
    PlantedDevice full(Displays), poor(Displays);
    full.With(SPDRP_DEVICEDESC, L"").Device(L"DeviceDesc", L"of the device");
    full.Driver(L"DeviceDesc", L"not asked").Driver(L"DriverDesc", L"Driver").Driver(L"Ver", L"4.1");
    full.Driver(L"DriverVersion", L"not asked").Driver(L"VideoMemory", L"6 GB", L"info");
    full.Driver(L"ChipType", L"Chip", L"info").Driver(L"HardwareInformation.ChipType", L"not asked");
    full.Driver(L"DACType", L"Dac", L"info").Driver(L"HardwareInformation.DacType", L"not asked");
    full.Device(L"MatchingDeviceID", L"PCI\\VEN_10DE&DEV_1C03\\5&x")
        .Driver(L"MatchingDeviceID", L"not asked");
    poor.Device(L"DeviceDesc", L"").Driver(L"DeviceDesc", L"of the driver").Driver(L"DriverVersion", L"1.0");
    poor.Driver(L"HardwareInformation.ChipType", L"C").Driver(L"HardwareInformation.DacType", L"D");
    poor.Driver(L"MatchingDeviceID", L"pci\\ven_1002&dev_67df").Driver(L"VideoMemory", 5ULL << 30, L"info");
    const test::LogCapture log(3);
    const auto infos = List(&SetupLib::GetGpuInfo);
    ASSERT_GE(infos.size(), 2U);
    std::wstring shown;
    for (const GpuInfo& info : std::span(infos).last(2))  // after the system's own
        shown += Joined(info.description, info.driverVersion.value(), info.chipType, info.dacType,
                        info.driverDescription, info.driverMemory.value(), info.deviceId);
    EXPECT_EQ(shown,
              L"of the device|4.1|Chip|Dac|Driver|6.0 GB|PCI\\VEN_10DE&DEV_1C03|"
              L"of the driver|1.0|C|D||5.0 GB|PCI\\VEN_1002&DEV_67DF|");
    for (const wchar_t* line : {L"TRACE DriverDesc: Driver", L"TRACE Got device ID: pci\\ven_1002&dev_67df"})
        EXPECT_EQ(std::ranges::count(log.Lines(), line), 1) << line;
}

DWORD failure = 0;  ///< what the failing functions return; 0 when they throw

template <typename Result>
Result Fail(Result result)
{
    if (failure == 0)
        throw 1;
    SetLastError(failure);
    return result;
}

HDEVINFO WINAPI NoSet(const GUID*, PCWSTR, HWND, DWORD)
{
    return Fail(INVALID_HANDLE_VALUE);
}

BOOL WINAPI NoProperty(HDEVINFO, PSP_DEVINFO_DATA, DWORD, PDWORD, PBYTE, DWORD, PDWORD)
{
    return Fail(FALSE);
}

/// Loads the library, and replaces one function.
template <typename Function>
SetupLib::Loader With(Function* Table::*function, Function* other)
{
    return [function, other](Table& table) {
        Table::Load(table);
        table.*function = other;
        return true;
    };
}

TEST(SetupLib, LogsTheFailureOfEachCallAndContinues)
{
    PlantedDevice disk(Disks), keyless(Scsis), driverless(Scsis);
    driverless.Device(L"x", L"");
    const std::wstring init = L";ERR Failure to initialize SetupLib class";
    const std::wstring noSet = L";ERR Failed call to GetDeviceSet for ", sound = noSet + L"GetSoundInfo";
    const std::wstring noKey = L";WARN Error in call to SetupDiOpenDevRegKey for ",
                       error = L" key: 3758096900";
    const std::tuple<SetupLib::Loader, DWORD, const char*, std::wstring> rows[] = {
        // how it is loaded, how calls fail, what the listings return, and lines that are written
        {[](Table&) { return SetLastError(126), false; }, 0, "00000000",
         L"MARK Entering: kel::SetupLib::Initialize;ERR Failure to load setupapi.dll: 126" + init},
        {[](Table&) { return true; }, 0, "00000000",
         L"ERR Error getting proc addresses from Setup library." + init},
        {[](Table&) -> bool { throw 1; }, 0, "00000000", L"ERR Error initializing Setup library." + init},
        {With(&Table::getClassDevs, &NoSet), 5, "00000000",
         L"WARN SetupDiGetClassDevs failed with error: 5" + noSet + L"GetGpuInfo" + noSet + L"GetCDRomInfo" +
             sound + sound},
        {With(&Table::getClassDevs, &NoSet), 0, "00000000", L"ERR Error in call to SetupDiGetClassDevs."},
        {With(&Table::getDeviceRegistryProperty, &NoProperty), 31, "11111111",
         L"WARN SetupDiGetDeviceRegistryProperty failed with error: 31" + noKey + L"hardware" + error +
             noKey + L"software" + error},
        {With(&Table::getDeviceRegistryProperty, &NoProperty), 0, "00011111",
         L"ERR Error in GetHardDriveInfo;ERR Error in GetGpuInfo;ERR Error in GetScsiInfo"},
    };
    for (const auto& [load, how, expected, lines] : rows) {
        failure = how;
        const test::LogCapture log(LogMark);
        SetupLib library(load);
        const FailureScope scope;
        EXPECT_EQ(AskAll(library), expected) << lines;
        const std::vector<SourceFailure>& failures = scope.Found().sources;
        EXPECT_TRUE(failures.empty() || failures.front().source.starts_with(L"Setup API")) << lines;
        EXPECT_THAT(log.Lines(), testing::IsSupersetOf(test::Split(lines, L';')));
    }
}

}  // namespace
}  // namespace kel
