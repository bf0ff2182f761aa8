#include "probes/SetupLib.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "support/LogCapture.h"
#include "support/PlantedDevice.h"
#include "support/ScratchKey.h"

namespace kel {
namespace {

using test::PlantedDevice;
using Lines = std::vector<std::wstring>;
using Table = SetupEntryPoints;

constexpr test::DeviceClass CDRoms = test::OpticalClass, Disks = test::DiskClass,
                            Displays = test::DisplayClass, Sounds = test::SoundClass,
                            Networks = test::NetworkClass, Scsis = test::ScsiClass;

std::wstring Show(const Value& value)
{
    return value.ToString();
}

std::wstring Show(const std::wstring& text)
{
    return text;
}

std::wstring Show(std::optional<bool> flag)
{
    return *flag ? L"Yes" : L"No";
}

std::wstring Show(const std::optional<Version>& version)
{
    return version ? version->ToString() : L"";
}

std::wstring Show(MediaKind kind)
{
    return std::to_wstring(static_cast<DWORD>(kind));
}

template <typename T>
std::wstring Show(const std::optional<T>& value)
{
    return value ? value->ToString() : L"(none)";
}

/// What a listing gives: of each record the fields, joined by "|".
template <typename Info, typename... Fields>
Lines List(bool (SetupLib::*list)(std::vector<Info>&), Fields Info::*... fields)
{
    std::vector<Info> infos;
    EXPECT_TRUE((SetupLib().*list)(infos));
    Lines shown;
    for (const Info& info : infos) {
        shown.emplace_back();
        ((shown.back() += (shown.back().empty() ? L"" : L"|") + Show(info.*fields)), ...);
    }
    return shown;
}

Lines ListGpus()
{
    using I = GpuInfo;
    return List(&SetupLib::GetGpuInfo, &I::description, &I::driverVersion, &I::chipType, &I::dacType,
                &I::driverDescription, &I::videoMemory, &I::deviceId);
}

/// A library whose table a function has spoilt.
SetupLib Spoilt(void (*spoil)(Table&))
{
    return SetupLib([spoil](Table& table) {
        Table::Load(table);
        spoil(table);
        return true;
    });
}

/// What all six listings return, "1" for true, and the lines that they write at levels 1 and 2.
std::pair<std::string, Lines> AskAll(SetupLib& library)
{
    const test::LogCapture log(2);
    std::string results;
    const auto ask = [&]<typename Info>(bool (SetupLib::*list)(std::vector<Info>&)) {
        std::vector<Info> infos;
        results += (library.*list)(infos) ? '1' : '0';
    };
    ask(&SetupLib::GetHardDriveInfo);
    ask(&SetupLib::GetGpuInfo);
    ask(&SetupLib::GetScsiInfo);
    ask(&SetupLib::GetCDRomInfo);
    ask(&SetupLib::GetNetworkDeviceInfo);
    ask(&SetupLib::GetSoundInfo);
    return {results, log.Lines()};
}

TEST(SetupLib, ListsDisksControllersDrivesAndSound)
{
    PlantedDevice a(Disks), b(Disks), c(Disks);
    a.With(SPDRP_FRIENDLYNAME, L"Disk A").With(SPDRP_HARDWAREID, L"IDE\\DiskST35");
    b.With(SPDRP_FRIENDLYNAME, L"b").With(SPDRP_HARDWAREID, L"1234567");
    c.With(SPDRP_FRIENDLYNAME, L"c").With(SPDRP_HARDWAREID, std::wstring(L"123456789 first\0second\0", 23));
    EXPECT_EQ(List(&SetupLib::GetHardDriveInfo, &DiskInfo::friendlyName, &DiskInfo::model),
              (Lines{L"Disk A|ST35", L"b|", L"c|9 first"}));
    // The system restores the class's own name, so another one comes from a table.
    SetupLib foreign = Spoilt([](Table& table) {
        table.getDeviceRegistryProperty = [](HDEVINFO, PSP_DEVINFO_DATA, DWORD, PDWORD, PBYTE data, DWORD,
                                             PDWORD needed) -> BOOL {
            if (data == nullptr)
                *needed = 20;
            else
                wcscpy(reinterpret_cast<wchar_t*>(data), L"diskdrive");
            return TRUE;
        };
    });
    std::vector<DiskInfo> none;
    EXPECT_TRUE(foreign.GetHardDriveInfo(none));
    EXPECT_TRUE(none.empty());

    PlantedDevice scsi(Scsis), cd(CDRoms), plain(CDRoms), driverless(Sounds);
    scsi.With(SPDRP_HARDWAREID, L"PCI\\VEN_1000").Device(L"x", L"").Driver(L"DriverVersion", L"1.2.3");
    cd.With(SPDRP_FRIENDLYNAME, L"Friendly").With(SPDRP_DEVICEDESC, L"no").With(SPDRP_HARDWAREID, L"IDE\\CD");
    plain.With(SPDRP_FRIENDLYNAME, L"").With(SPDRP_DEVICEDESC, L"Described");
    driverless.With(SPDRP_DEVICEDESC, L"No driver").With(SPDRP_HARDWAREID, L"HDAUDIO\\F").Device(L"x", L"");
    EXPECT_EQ(List(&SetupLib::GetScsiInfo, &ScsiInfo::deviceId, &ScsiInfo::driverVersion),
              Lines{L"PCI\\VEN_1000|1.2.3"});
    EXPECT_EQ(List(&SetupLib::GetCDRomInfo, &OpticalInfo::name, &OpticalInfo::deviceId),
              (Lines{L"Friendly|IDE\\CD", L"Described|"}));
    const test::LogCapture log(2);
    EXPECT_EQ(
        List(&SetupLib::GetSoundInfo, &SoundInfo::name, &SoundInfo::deviceId, &SoundInfo::driverVersion),
        Lines{L"No driver|HDAUDIO\\F|"});
    const std::wstring failure = L"WARN Error in call to SetupDiOpenDevRegKey for software key: ";
    ASSERT_EQ(log.Lines().size(), 1U);
    EXPECT_TRUE(log.Lines()[0].starts_with(failure) && std::stoul(log.Lines()[0].substr(failure.size())) > 0);
}

TEST(SetupLib, ListsNetworkAdapters)
{
    const std::wstring connections =
        L"SYSTEM\\CurrentControlSet\\Control\\Network\\{4D36E972-E325-11CE-BFC1-08002BE10318}\\";
    const auto connect = [&connections](const wchar_t* instance, DWORD type, const wchar_t* data) {
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, (connections + instance + L"\\Connection").c_str(),
                        L"MediaSubType", type, data, sizeof(DWORD));
    };
    PlantedDevice onBoard(Networks), card(Networks), wireless(Networks), other(Networks), bare(Networks);
    onBoard.With(SPDRP_FRIENDLYNAME, L"Onboard").With(SPDRP_LOCATION_INFORMATION, L"PCI Bus 0, device 25");
    onBoard.Driver(L"DriverVersion", L"12.1").Driver(L"NetCFGInstanceID", L"{KT1}");
    card.With(SPDRP_DEVICEDESC, L"Card").With(SPDRP_LOCATION_INFORMATION, L"PCI bus 3");
    card.Driver(L"NetCFGInstanceID", L"{KT2}");
    wireless.With(SPDRP_HARDWAREID, L"USB\\VID_1").Driver(L"NetCFGInstanceID", L"{KT3}");
    connect(L"{KT1}", REG_DWORD, L"\1");
    connect(L"{KT2}", REG_SZ, L"2");
    connect(L"{KT3}", REG_DWORD, L"\2");
    other.Driver(L"NetCFGInstanceID", L"{KT4}");
    connect(L"{KT4}", REG_DWORD, L"\3");
    using I = NetworkInfo;
    EXPECT_EQ(List(&SetupLib::GetNetworkDeviceInfo, &I::isOnBus, &I::name, &I::deviceId, &I::driverVersion,
                   &I::instanceId, &I::mediaSubType, &I::mediaKind),
              (Lines{L"Yes|Onboard||12.1|{KT1}|1|1", L"No|Card|||{KT2}||0", L"No||USB\\VID_1||{KT3}|2|256",
                     L"No||||{KT4}|3|0", L"No||||||0"}));
    for (const wchar_t* instance : {L"{KT1}", L"{KT2}", L"{KT3}", L"{KT4}"})
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, (connections + instance).c_str());
}

TEST(SetupLib, ListsDisplayAdaptersWithTheirFallbacks)
{
    const auto own = static_cast<std::ptrdiff_t>(ListGpus().size());  // the system's own come first
    PlantedDevice full(Displays), unnamed(Displays), poor(Displays), keyless(Displays);
    full.With(SPDRP_DEVICEDESC, L"Full").Device(L"MatchingDeviceID", L"PCI\\VEN_10DE&DEV_1C03\\5&x");
    full.Driver(L"Ver", L"4.1").Driver(L"DriverVersion", L"not asked").Driver(L"DriverDesc", L"Driver");
    full.Driver(L"ChipType", L"Chip", L"info").Driver(L"DACType", L"Dac", L"info");
    full.Driver(L"VideoMemory", L"6 GB", L"info").Driver(L"HardwareInformation.DacType", L"not asked");
    full.Driver(L"HardwareInformation.ChipType", L"not asked").Driver(L"MatchingDeviceID", L"not asked");
    unnamed.With(SPDRP_DEVICEDESC, L"").Device(L"DeviceDesc", L"of the device");
    unnamed.Driver(L"DeviceDesc", L"not asked").Driver(L"VideoMemory", 5ULL << 30, L"info");
    poor.Device(L"DeviceDesc", L"").Driver(L"DeviceDesc", L"of the driver").Driver(L"DriverVersion", L"1.0");
    poor.Driver(L"HardwareInformation.ChipType", L"C").Driver(L"HardwareInformation.DacType", L"D");
    poor.Driver(L"MatchingDeviceID", L"pci\\ven_1002&dev_67df");
    keyless.With(SPDRP_DEVICEDESC, L"Keyless");
    const test::LogCapture log(3);
    const Lines shown = ListGpus();
    EXPECT_EQ(Lines(shown.begin() + own, shown.end()),
              (Lines{L"Full|4.1|Chip|Dac|Driver|6.0 GB|PCI\\VEN_10DE&DEV_1C03", L"of the device|||||5.0 GB|",
                     L"of the driver|1.0|C|D||(none)|PCI\\VEN_1002&DEV_67DF", L"Keyless|||||(none)|"}));
    for (const wchar_t* line : {L"TRACE DriverDesc: Driver", L"TRACE Got device ID: pci\\ven_1002&dev_67df"})
        EXPECT_EQ(std::ranges::count(log.Lines(), line), 1) << line;
}

TEST(SetupLib, RefinesTheIdOfAnIntelAdapterFromItsInf)
{
    const std::string head = "[Version]\nSignature=\"$Windows NT$\"\n";
    const std::string model = "%d%=Install, PCI\\VEN_8086&DEV_1912, PCI\\VEN_8086&DEV_1916&SUBSYS_07251028\n";
    const std::string other =
        "%d%=Install, PCI\\VEN_8086&DEV_1916&SUBSYS_FFFFFFFF, PCI\\VEN_10DE&DEV_1916&REV_02\n";
    const std::string plain = head + "[Manufacturer]\n%m%=Models\n[Strings]\nm=Maker\nd=Adapter\n";
    std::string many = plain + "[Models]\n";
    while (many.size() < 1 << 20)
        many += "%d%=Install" + std::to_string(many.size()) + ", PCI\\VEN_8086&DEV_0002\n";
    const struct {
        const char* what;
        std::string inf;
        bool isFound;
    } rows[] = {
        {"plain section", plain + "[Models.NTamd64]\n" + other + "[Models]\n" + model + other, true},
        {"a relative's line before the device's own", plain + "[Models]\n" + other + model, true},
        {"a relative's line alone", plain + "[Models]\n" + other, false},
        {"decorated as the line says",
         head + "[Manufacturer]\n%m%=A\n%m%=B,NTx86,NTamd64.6.1\n[A]\n%d%=I,PCI\\VEN_8086\n[B.NTamd64]\n" +
             other + "[B.NTamd64.6.1]\n" + model,
         true},
        {"decorated without the line saying so",
         plain + "[Models.NT]\n" + other + "[Models.NTamd64]\n" + model, true},
        {"decorated as old files are", plain + "[Models.NT]\n" + model, true},
        {"another decoration", plain + "[Models.NTia64]\n" + model, false},
        {"id as an installation's name",
         plain + "[Models]\n%d%=PCI\\VEN_8086&DEV_1916, PCI\\VEN_8086&DEV_1917\n", false},
        {"no models", plain, false},
        {"no manufacturer", head + "[Models]\n" + model, false},
        {"empty", "", false},
        {"malformed", "[Manufacturer\n%m=Models,,\n]]=\n\"", false},
        {"a long comment", plain + "[Models]\n" + std::string(1 << 20, ';') + "\n" + model, true},
        {"a megabyte of lines", many + model, true},
    };
    constexpr const wchar_t* Found = L"PCI\\VEN_8086&DEV_1916&SUBSYS_07251028";
    constexpr const wchar_t* Matching = L"PCI\\ven_8086&Dev_1916";
    PlantedDevice adapter(Displays);
    adapter.With(SPDRP_DEVICEDESC, L"Intel").Device(L"MatchingDeviceID", Matching);
    adapter.With(
        SPDRP_HARDWAREID,
        std::wstring(
            L"PCI\\VEN_8086&DEV_1916&SUBSYS_07251028&REV_07\0pci\\ven_8086&dev_1916&subsys_07251028\0"
            L"PCI\\VEN_8086&DEV_1912\0",
            105));
    const auto isGiven = [](const wchar_t* id) {  // as the adapter's own
        return ListGpus().back().ends_with(DeviceID(id).ToString());
    };
    for (const wchar_t* path : {L"", L"keltest.inf"}) {  // there is no such file
        adapter.Driver(L"InfPath", path);
        EXPECT_TRUE(isGiven(Matching));
    }
    for (const auto& row : rows) {
        std::ofstream("C:\\windows\\inf\\keltest.inf", std::ios::binary) << row.inf;
        const test::LogCapture log(3);
        EXPECT_TRUE(isGiven(row.isFound ? Found : Matching)) << row.what;
        const Lines lines = log.Lines();
        EXPECT_EQ(std::ranges::count(lines, std::wstring(L"TRACE Got 2ID: ") + Found), row.isFound)
            << row.what;
        for (const wchar_t* line : {L"TRACE Is Intel.", L"TRACE Inf Path: keltest.inf"})
            EXPECT_EQ(std::ranges::count(lines, line), 1) << row.what;
    }
    std::ofstream("C:\\windows\\inf\\keltest.inf", std::ios::binary) << plain + "[Models]\n" + model;
    // One without a device, of which any id would do, and one of another maker.
    for (const wchar_t* id : {L"PCI\\VEN_8086&CC_0300", L"PCI\\VEN_10DE&DEV_1916", Matching}) {
        adapter.Device(L"MatchingDeviceID", id);
        EXPECT_EQ(isGiven(id), id != Matching) << id;
    }
    static int setsClosed, filesClosed;
    SetupLib counting = Spoilt([](Table& table) {
        table.destroyDeviceInfoList = [](HDEVINFO set) {
            return ++setsClosed, SetupDiDestroyDeviceInfoList(set);
        };
        table.closeInfFile = [](HINF file) {
            ++filesClosed;
            SetupCloseInfFile(file);
        };
    });
    AskAll(counting);
    EXPECT_EQ(setsClosed, 6);
    EXPECT_EQ(filesClosed, 1);
    DeleteFileW(L"C:\\windows\\inf\\keltest.inf");
}

TEST(SetupLib, ReadsRegistryValuesOfEachType)
{
    const test::ScratchKey key;
    const DWORD number = 4000000000U;
    const ULONGLONG large = 5ULL << 32;
    const std::wstring longText(501, L'x');
    const std::wstring fitting(499, L'x');
    const struct {
        const wchar_t* name;
        DWORD type;
        const void* data;
        std::size_t size;
        bool isText;
        std::wstring text;
        bool isSize;
        ULONGLONG bytes;
    } rows[] = {
        {L"string", REG_SZ, L"1048576", 16, true, L"1048576", true, 1048576},
        {L"unit", REG_EXPAND_SZ, L"2 GB", 10, true, L"2 GB", true, 2ULL << 30},
        {L"unterminated", REG_SZ, L"12345", 6, true, L"123", true, 123},
        {L"empty", REG_SZ, L"", 0, true, L"", true, 0},
        {L"list", REG_MULTI_SZ, L"one\0two\0", 18, true, L"one", false, 0},
        {L"number", REG_DWORD, &number, 4, true, L"4000000000", true, number},
        {L"short number", REG_DWORD, &number, 2, false, L"", false, 0},
        {L"large number", REG_QWORD, &large, 8, true, L"", true, large},
        {L"binary", REG_BINARY, &large, 8, false, L"", true, large},
        {L"short binary", REG_BINARY, &number, 4, false, L"", true, number},
        {L"no bytes", REG_BINARY, &number, 0, false, L"", false, 0},
        {L"long binary", REG_BINARY, fitting.data(), 9, false, L"", false, 0},
        {L"largest", REG_SZ, fitting.data(), 1000, true, fitting, true, 0},
        {L"too large", REG_SZ, longText.data(), 1002, false, L"", false, 0},
    };
    for (const auto& row : rows) {
        key.Write(L"sub", row.name, row.type, row.data, row.size);
        const test::LogCapture log(2);
        std::wstring text = L"left over";
        EXPECT_EQ(ReadRegistryValue(key.Key(), L"sub", row.name, text), row.isText) << row.name;
        EXPECT_EQ(text, row.text) << row.name;
        const std::wstring failed = L"WARN Can't handle Registry value for: " + std::wstring(row.name);
        EXPECT_EQ(log.Lines(), row.isText ? Lines{} : Lines{failed}) << row.name;
        Size size(7);
        EXPECT_EQ(ReadRegistrySize(key.Key(), L"sub", row.name, size), row.isSize) << row.name;
        EXPECT_EQ(size.Bytes(), row.bytes) << row.name;
    }
    std::wstring text = L"left over";
    EXPECT_FALSE(ReadRegistryValue(nullptr, nullptr, L"string", text));
    EXPECT_FALSE(ReadRegistryValue(key.Key(), L"missing", L"string", text));
    EXPECT_FALSE(ReadRegistryValue(key.Key(), L"", L"string", text));  // stands in the subkey
    EXPECT_EQ(text, L"");
    const test::LogCapture log(2);
    Log::Instance().exceptions(std::ios::badbit);  // raised by the name that is none
    EXPECT_FALSE(ReadRegistryValue(key.Key(), nullptr, nullptr, text));
    Log::Instance().exceptions(std::ios::goodbit);
    EXPECT_EQ(log.Lines().back(), L"WARN Error with CRegKey");
}

template <typename... Functions>
void ExpectEachNeeded(Functions* Table::*... functions)
{
    const auto isComplete = [](auto... missing) {
        Table table;
        Table::Load(table);
        ((table.*missing = nullptr), ...);
        return table.IsComplete();
    };
    EXPECT_TRUE(isComplete());
    EXPECT_EQ((int{isComplete(functions)} + ...), 0);
}

TEST(SetupLib, NeedsEachOfItsFunctions)
{
    ExpectEachNeeded(&Table::getClassDevs, &Table::enumDeviceInfo, &Table::getDeviceRegistryProperty,
                     &Table::getDeviceInstanceId, &Table::findFirstLine, &Table::findNextLine,
                     &Table::getLineText, &Table::openInfFile, &Table::closeInfFile, &Table::openDevRegKey,
                     &Table::destroyDeviceInfoList);
}

TEST(SetupLib, AnswersFalseWithoutItsLibraryOrAFunction)
{
    const std::pair<SetupLib::Loader, const wchar_t*> rows[] = {
        {[](Table&) { return SetLastError(126), false; }, L"ERR Failure to load setupapi.dll: 126"},
        {[](Table& table) { return Table::Load(table), table.getLineText = nullptr, true; },
         L"ERR Error getting proc addresses from Setup library."},
        {[](Table&) -> bool { throw 1; }, L"ERR Error initializing Setup library."},
    };
    for (const auto& [load, line] : rows) {
        const test::LogCapture log(2);
        SetupLib library(load);
        EXPECT_EQ(log.Lines(), (Lines{line, L"ERR Failure to initialize SetupLib class"}));
        EXPECT_EQ(AskAll(library), (std::pair<std::string, Lines>{"000000", {}}));
    }
}

template <DWORD Error>
HDEVINFO WINAPI NoSet(const GUID*, PCWSTR, HWND, DWORD)
{
    return Error != 0 ? (SetLastError(Error), INVALID_HANDLE_VALUE) : throw 1;
}

template <DWORD Error>
BOOL WINAPI NoProperty(HDEVINFO, PSP_DEVINFO_DATA, DWORD, PDWORD, PBYTE, DWORD, PDWORD)
{
    return Error != 0 ? (SetLastError(Error), FALSE) : throw 1;
}

HKEY WINAPI NoKey(HDEVINFO, PSP_DEVINFO_DATA, DWORD, DWORD, DWORD, REGSAM)
{
    return SetLastError(2), static_cast<HKEY>(INVALID_HANDLE_VALUE);
}

TEST(SetupLib, ReportsAFailureOfEachCallAndGoesOn)
{
    PlantedDevice disk(Disks), scsi(Scsis);
    const std::wstring set = L"WARN SetupDiGetClassDevs failed with error: 5";
    const std::wstring thrown = L"ERR Error in call to SetupDiGetClassDevs.";
    const std::wstring gpu = L"ERR Failed call to GetDeviceSet for GetGpuInfo";
    const std::wstring cdrom = L"ERR Failed call to GetDeviceSet for GetCDRomInfo";
    const std::wstring sound = L"ERR Failed call to GetDeviceSet for GetSoundInfo";
    const struct {
        void (*spoil)(Table&);
        const char* results;
        Lines first;  // of the lines
    } rows[] = {
        {[](Table& table) { table.getClassDevs = &NoSet<5>; },
         "000000",
         {set, set, gpu, set, set, cdrom, set, sound, set, sound}},
        {[](Table& table) { table.getClassDevs = &NoSet<0>; },
         "000000",
         {thrown, thrown, gpu, thrown, thrown, cdrom, thrown, sound, thrown, sound}},
        {[](Table& table) { table.getDeviceRegistryProperty = &NoProperty<31>; },
         "111111",
         {L"WARN SetupDiGetDeviceRegistryProperty failed with error: 31"}},
        {[](Table& table) { table.getDeviceRegistryProperty = &NoProperty<0>; },
         "000111",
         {L"ERR Error in GetHardDriveInfo", L"ERR Error in GetGpuInfo", L"ERR Error in GetScsiInfo"}},
        {[](Table& table) { table.openDevRegKey = &NoKey; },
         "111111",
         {L"WARN Error in call to SetupDiOpenDevRegKey for hardware key: 2"}},
    };
    for (const auto& row : rows) {
        SetupLib library = Spoilt(row.spoil);
        auto [results, lines] = AskAll(library);
        EXPECT_EQ(results, row.results) << row.first[0].c_str();
        lines.resize(std::min(lines.size(), row.first.size()));
        EXPECT_EQ(lines, row.first);
    }
}

}  // namespace
}  // namespace kel
