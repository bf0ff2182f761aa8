#include "probes/SetupLib.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/LogCapture.h"
#include "support/PlantedDevice.h"
#include "support/ScratchKey.h"

namespace kel {
namespace {

using test::PlantedDevice;
using Lines = std::vector<std::wstring>;

constexpr DWORD CDRoms = 0x4D36E965, Disks = 0x4D36E967, Displays = 0x4D36E968, Sounds = 0x4D36E96C,
                Networks = 0x4D36E972, Scsis = 0x4D36E97B;

std::wstring Joined(std::initializer_list<const Value*> fields)
{
    std::wstring text;
    for (const Value* field : fields)
        text += (text.empty() && field == *fields.begin() ? L"" : L"|") + std::wstring(field->ToString());
    return text;
}

std::wstring Shown(const SetupHardDriveInfo& i)
{
    return Joined({&i.friendlyName, &i.model});
}
std::wstring Shown(const SetupScsiInfo& i)
{
    return Joined({&i.hardwareId, &i.driverVersion});
}
std::wstring Shown(const SetupCDRomInfo& i)
{
    return Joined({&i.name, &i.hardwareId});
}
std::wstring Shown(const SetupSoundInfo& i)
{
    return Joined({&i.name, &i.hardwareId, &i.driverVersion});
}
std::wstring Shown(const SetupNetworkInfo& i)
{
    return Joined({&i.name, &i.hardwareId, &i.isOnBus, &i.driverVersion, &i.instanceId, &i.mediaSubType}) +
           L"|" + std::to_wstring(static_cast<DWORD>(i.mediaKind));
}
std::wstring Shown(const SetupGpuInfo& i)
{
    return Joined({&i.description, &i.driverVersion, &i.chipType, &i.dacType, &i.driverDescription,
                   &i.videoMemory, &i.deviceId});
}

template <typename Info>
Lines List(bool (SetupLib::*list)(std::vector<Info>&))
{
    std::vector<Info> infos;
    EXPECT_TRUE((SetupLib().*list)(infos));
    Lines shown;
    std::ranges::transform(infos, std::back_inserter(shown), [](const Info& info) { return Shown(info); });
    return shown;
}

/// Tells another class than the system does, which restores its own name.
BOOL WINAPI LowerCaseClass(HDEVINFO set, PSP_DEVINFO_DATA device, DWORD property, PDWORD type, PBYTE data,
                           DWORD size, PDWORD needed)
{
    const BOOL result = SetupDiGetDeviceRegistryPropertyW(set, device, property, type, data, size, needed);
    if (result && property == SPDRP_CLASS && data != nullptr)
        CharLowerW(reinterpret_cast<wchar_t*>(data));
    return result;
}

TEST(SetupLib, ListsDisks)
{
    EXPECT_EQ(List(&SetupLib::GetHardDriveInfo), Lines{});
    PlantedDevice a(Disks), b(Disks), c(Disks), d(Disks);
    a.With(SPDRP_FRIENDLYNAME, L"Disk A").With(SPDRP_HARDWAREID, L"IDE\\DiskST35");
    b.With(SPDRP_HARDWAREID, L"1234567");
    c.With(SPDRP_HARDWAREID, L"12345678");
    d.With(SPDRP_HARDWAREID, std::wstring(L"123456789 first\0second\0", 23));
    EXPECT_EQ(List(&SetupLib::GetHardDriveInfo), (Lines{L"Disk A|ST35", L"|", L"|", L"|9 first"}));
    SetupLib foreign([](SetupEntryPoints& table) {
        SetupEntryPoints::Load(table);
        table.getDeviceRegistryProperty = &LowerCaseClass;
        return true;
    });
    std::vector<SetupHardDriveInfo> none;
    EXPECT_TRUE(foreign.GetHardDriveInfo(none));
    EXPECT_TRUE(none.empty());
}

TEST(SetupLib, ListsControllersDrivesAndSound)
{
    PlantedDevice scsi(Scsis), cd(CDRoms), plain(CDRoms), sound(Sounds), driverless(Sounds);
    scsi.With(SPDRP_HARDWAREID, L"PCI\\VEN_1000").With(DIREG_DEV, nullptr, L"x", L"");
    scsi.With(DIREG_DRV, nullptr, L"DriverVersion", L"1.2.3");
    cd.With(SPDRP_FRIENDLYNAME, L"Friendly")
        .With(SPDRP_DEVICEDESC, L"Described")
        .With(SPDRP_HARDWAREID, L"IDE\\CD");
    plain.With(SPDRP_FRIENDLYNAME, L"").With(SPDRP_DEVICEDESC, L"Described");
    sound.With(SPDRP_DEVICEDESC, L"Sound").With(DIREG_DEV, nullptr, L"x", L"");
    sound.With(DIREG_DRV, nullptr, L"DriverVersion", L"6.0");
    driverless.With(SPDRP_DEVICEDESC, L"No driver")
        .With(SPDRP_HARDWAREID, L"HDAUDIO\\F")
        .With(DIREG_DEV, nullptr, L"x", L"");
    EXPECT_EQ(List(&SetupLib::GetScsiInfo), Lines{L"PCI\\VEN_1000|1.2.3"});
    EXPECT_EQ(List(&SetupLib::GetCDRomInfo), (Lines{L"Friendly|IDE\\CD", L"Described|"}));
    const test::LogCapture log(2);
    EXPECT_EQ(List(&SetupLib::GetSoundInfo), (Lines{L"Sound||6.0", L"No driver|HDAUDIO\\F|"}));
    ASSERT_EQ(log.Lines().size(), 1U);
    EXPECT_TRUE(log.Lines()[0].starts_with(L"WARN Error in call to SetupDiOpenDevRegKey for software key: "));
}

constexpr const wchar_t* Connections =
    L"SYSTEM\\CurrentControlSet\\Control\\Network\\{4D36E972-E325-11CE-BFC1-08002BE10318}\\";

TEST(SetupLib, ListsNetworkAdapters)
{
    PlantedDevice onBoard(Networks), card(Networks), wireless(Networks), bare(Networks);
    onBoard.With(SPDRP_FRIENDLYNAME, L"Onboard").With(SPDRP_LOCATION_INFORMATION, L"PCI Bus 0, device 25");
    onBoard.With(DIREG_DRV, nullptr, L"DriverVersion", L"12.1")
        .With(DIREG_DRV, nullptr, L"NetCFGInstanceID", L"{KT1}");
    card.With(SPDRP_DEVICEDESC, L"Card").With(SPDRP_LOCATION_INFORMATION, L"PCI bus 3");
    card.With(DIREG_DRV, nullptr, L"NetCFGInstanceID", L"{KT2}");
    wireless.With(SPDRP_HARDWAREID, L"USB\\VID_1").With(DIREG_DRV, nullptr, L"NetCFGInstanceID", L"{KT3}");
    const DWORD lan = 1, air = 2;
    const auto connect = [](const wchar_t* instance, DWORD type, const void* data) {
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, (std::wstring(Connections) + instance + L"\\Connection").c_str(),
                        L"MediaSubType", type, data, sizeof(DWORD));
    };
    connect(L"{KT1}", REG_DWORD, &lan);
    connect(L"{KT2}", REG_SZ, L"2");
    connect(L"{KT3}", REG_DWORD, &air);
    EXPECT_EQ(List(&SetupLib::GetNetworkDeviceInfo),
              (Lines{L"Onboard||Yes|12.1|{KT1}|1|1", L"Card||No||{KT2}||0", L"|USB\\VID_1|No||{KT3}|2|256",
                     L"||No||||0"}));
    for (const wchar_t* instance : {L"{KT1}", L"{KT2}", L"{KT3}"})
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, (std::wstring(Connections) + instance).c_str());
}

TEST(SetupLib, ListsDisplayAdaptersWithTheirFallbacks)
{
    const auto own = List(&SetupLib::GetGpuInfo).size();  // the system's own come first
    const ULONGLONG memory = 6ULL << 30;
    PlantedDevice full(Displays), poor(Displays), keyless(Displays);
    full.With(SPDRP_DEVICEDESC, L"Full")
        .With(DIREG_DEV, nullptr, L"MatchingDeviceID", L"PCI\\VEN_10DE&DEV_1C03\\5&x");
    full.With(DIREG_DRV, nullptr, L"Ver", L"4.1").With(DIREG_DRV, nullptr, L"DriverVersion", L"not asked");
    full.With(DIREG_DRV, L"info", L"ChipType", L"Chip").With(DIREG_DRV, L"info", L"DACType", L"Dac");
    full.With(DIREG_DRV, nullptr, L"DriverDesc", L"Driver");
    full.With(DIREG_DRV, L"info", L"VideoMemory", REG_QWORD, &memory, sizeof(memory));
    poor.With(DIREG_DEV, nullptr, L"DeviceDesc", L"")
        .With(DIREG_DRV, nullptr, L"DeviceDesc", L"of the driver");
    poor.With(DIREG_DRV, nullptr, L"DriverVersion", L"1.0")
        .With(DIREG_DRV, nullptr, L"HardwareInformation.ChipType", L"C");
    poor.With(DIREG_DRV, nullptr, L"HardwareInformation.DacType", L"D");
    poor.With(DIREG_DRV, nullptr, L"MatchingDeviceID", L"pci\\ven_1002&dev_67df");
    keyless.With(SPDRP_DEVICEDESC, L"Keyless");
    const test::LogCapture log(3);
    Lines shown = List(&SetupLib::GetGpuInfo);
    shown.erase(shown.begin(), shown.begin() + static_cast<std::ptrdiff_t>(own));
    EXPECT_EQ(shown, (Lines{L"Full|4.1|Chip|Dac|Driver|6.0 GB|PCI\\VEN_10DE&DEV_1C03",
                            L"of the driver|1.0|C|D||0.0 B|pci\\ven_1002&dev_67df", L"Keyless|||||0.0 B|"}));
    const Lines lines = log.Lines();
    for (const wchar_t* line : {L"TRACE DriverDesc: Driver", L"TRACE Got device ID: pci\\ven_1002&dev_67df"})
        EXPECT_EQ(std::ranges::count(lines, line), 1) << line;
}

/// Writes an INF file into the system's folder as long as it lives.
struct PlantedInf {
    explicit PlantedInf(const std::string& text)
    {
        const HANDLE file = CreateFileW(Path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD written = 0;
        WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        CloseHandle(file);
    }
    PlantedInf(const PlantedInf&) = delete;
    ~PlantedInf() { DeleteFileW(Path); }

    static constexpr const wchar_t* Path = L"C:\\windows\\inf\\keltest.inf";
};

TEST(SetupLib, RefinesTheIdOfAnIntelAdapterFromItsInf)
{
    const std::string head = "[Version]\nSignature=\"$Windows NT$\"\n";
    const std::string model = "%d%=Install, PCI\\VEN_8086&DEV_1912, PCI\\VEN_8086&DEV_1916&SUBSYS_07251028\n";
    const std::string plain = head + "[Manufacturer]\n%m%=Models\n[Strings]\nm=Maker\nd=Adapter\n";
    const struct {
        const char* what;
        std::string inf;
        bool isFound;
    } rows[] = {
        {"plain section", plain + "[Models]\n" + model, true},
        {"section decorated as the line says",
         head +
             "[Manufacturer]\n%m%=Other\n%m%=Models,NTx86,NTamd64.6.1\n[Other]\n%d%=I,PCI\\VEN_8086&DEV_"
             "0001\n"
             "[Models.NTamd64.6.1]\n" +
             model,
         true},
        {"decorated without the line saying so", plain + "[Models.NTamd64]\n" + model, true},
        {"another decoration", plain + "[Models.NTia64]\n" + model, false},
        {"no such model", plain + "[Models]\n%d%=PCI\\VEN_8086&DEV_1916, PCI\\VEN_8086&DEV_1917\n", false},
        {"no models", plain, false},
        {"no manufacturer", head + "[Models]\n" + model, false},
        {"empty", "", false},
        {"malformed", "[Manufacturer\n%m=Models,,\n]]=\n\"", false},
        {"a megabyte", plain + "[Models]\n" + std::string(1 << 20, ';') + "\n" + model, true},
        {"many lines",
         [&] {
             std::string many = plain + "[Models]\n";
             for (int i = 0; i < 20000; ++i)
                 many += "%d%=Install" + std::to_string(i) + ", PCI\\VEN_8086&DEV_0002\n";
             return many + model;
         }(),
         true},
    };
    PlantedDevice adapter(Displays);
    adapter.With(SPDRP_DEVICEDESC, L"Intel")
        .With(DIREG_DEV, nullptr, L"MatchingDeviceID", L"PCI\\ven_8086&Dev_1916");
    const auto listed = [] { return List(&SetupLib::GetGpuInfo).back(); };
    adapter.With(DIREG_DRV, nullptr, L"InfPath", L"");
    EXPECT_TRUE(listed().ends_with(L"|PCI\\ven_8086&Dev_1916")) << listed().c_str();
    adapter.With(DIREG_DRV, nullptr, L"InfPath", L"keltest.inf");
    EXPECT_TRUE(listed().ends_with(L"|PCI\\ven_8086&Dev_1916"));  // there is no such file
    for (const auto& row : rows) {
        const PlantedInf inf(row.inf);
        const test::LogCapture log(3);
        EXPECT_TRUE(listed().ends_with(row.isFound ? L"|PCI\\VEN_8086&DEV_1916&SUBSYS_07251028"
                                                   : L"|PCI\\ven_8086&Dev_1916"))
            << row.what;
        EXPECT_EQ(std::ranges::count(log.Lines(), L"TRACE Got 2ID: PCI\\VEN_8086&DEV_1916&SUBSYS_07251028"),
                  row.isFound)
            << row.what;
        EXPECT_EQ(std::ranges::count(log.Lines(), L"TRACE Is Intel."), 1) << row.what;
    }
}

TEST(SetupLib, ReadsRegistryValuesOfEachType)
{
    const test::ScratchKey key;
    const DWORD number = 4000000000U;
    const ULONGLONG large = 5ULL << 32;
    const std::wstring thousand(499, L'x');
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
        {L"long binary", REG_BINARY, thousand.data(), 9, false, L"", false, 0},
        {L"largest", REG_SZ, thousand.data(), 1000, true, thousand, true, 0},
        {L"too large", REG_SZ, std::wstring(501, L'x').data(), 1002, false, L"", false, 0},
    };
    for (const auto& row : rows) {
        key.Write(L"sub", row.name, row.type, row.data, row.size);
        const Lines failed = {L"WARN Can't handle Registry value for: " + std::wstring(row.name)};
        test::LogCapture log(2);
        std::wstring text = L"left over";
        EXPECT_EQ(SetupLib::ReadRegistryValue(key.Key(), L"sub", row.name, text), row.isText) << row.name;
        EXPECT_EQ(text, row.text) << row.name;
        EXPECT_EQ(log.Lines(), row.isText ? Lines{} : failed) << row.name;
        Size size(7);
        EXPECT_EQ(SetupLib::ReadRegistrySize(key.Key(), L"sub", row.name, size), row.isSize) << row.name;
        EXPECT_EQ(size.Bytes(), row.bytes) << row.name;
    }
    std::wstring text = L"left over";
    EXPECT_FALSE(SetupLib::ReadRegistryValue(nullptr, nullptr, L"string", text));
    EXPECT_FALSE(SetupLib::ReadRegistryValue(key.Key(), L"missing", L"string", text));
    EXPECT_FALSE(SetupLib::ReadRegistryValue(key.Key(), L"", L"string", text));  // stands in the subkey
    EXPECT_EQ(text, L"");
}

/// What all six listings return, "1" for true, and the lines that they write at levels 1 and 2.
std::pair<std::string, Lines> AskAll(SetupLib& library)
{
    const test::LogCapture log(2);
    std::vector<SetupHardDriveInfo> disks;
    std::vector<SetupGpuInfo> adapters;
    std::vector<SetupScsiInfo> controllers;
    std::vector<SetupCDRomInfo> drives;
    std::vector<SetupNetworkInfo> networks;
    std::vector<SetupSoundInfo> sounds;
    std::string results;
    for (const bool result :
         {library.GetHardDriveInfo(disks), library.GetGpuInfo(adapters), library.GetScsiInfo(controllers),
          library.GetCDRomInfo(drives), library.GetNetworkDeviceInfo(networks), library.GetSoundInfo(sounds)})
        results += result ? '1' : '0';
    return {results, log.Lines()};
}

TEST(SetupLib, AnswersFalseWithoutItsLibraryOrAFunction)
{
    const struct {
        SetupLib::Loader load;
        Lines lines;
    } rows[] = {
        {[](SetupEntryPoints&) {
             SetLastError(126);
             return false;
         },
         {L"ERR Failure to load setupapi.dll: 126", L"ERR Failure to initialize SetupLib class"}},
        {[](SetupEntryPoints& table) {
             SetupEntryPoints::Load(table);
             table.getLineText = nullptr;
             return true;
         },
         {L"ERR Error getting proc addresses from Setup library.",
          L"ERR Failure to initialize SetupLib class"}},
        {[](SetupEntryPoints&) -> bool { throw 1; },
         {L"ERR Error initializing Setup library.", L"ERR Failure to initialize SetupLib class"}},
    };
    for (const auto& row : rows) {
        const test::LogCapture log(2);
        SetupLib library(row.load);
        EXPECT_EQ(log.Lines(), row.lines);
        EXPECT_EQ(AskAll(library), (std::pair<std::string, Lines>{"000000", {}}));
    }
}

HDEVINFO WINAPI NoSet(const GUID*, PCWSTR, HWND, DWORD)
{
    SetLastError(5);
    return INVALID_HANDLE_VALUE;
}
HDEVINFO WINAPI ThrowingSet(const GUID*, PCWSTR, HWND, DWORD)
{
    throw 1;
}
BOOL WINAPI NoProperty(HDEVINFO, PSP_DEVINFO_DATA, DWORD, PDWORD, PBYTE, DWORD, PDWORD)
{
    SetLastError(31);
    return FALSE;
}
BOOL WINAPI ThrowingProperty(HDEVINFO, PSP_DEVINFO_DATA, DWORD, PDWORD, PBYTE, DWORD, PDWORD)
{
    throw 1;
}
HKEY WINAPI NoKey(HDEVINFO, PSP_DEVINFO_DATA, DWORD, DWORD, DWORD, REGSAM)
{
    SetLastError(2);
    return static_cast<HKEY>(INVALID_HANDLE_VALUE);
}

TEST(SetupLib, ReportsAFailureOfEachCallAndGoesOn)
{
    PlantedDevice disk(Disks), scsi(Scsis);
    const std::wstring set = L"WARN SetupDiGetClassDevs failed with error: 5";
    const std::wstring thrown = L"ERR Error in call to SetupDiGetClassDevs.";
    const std::wstring property = L"WARN SetupDiGetDeviceRegistryProperty failed with error: 31";
    const std::wstring gpu = L"ERR Failed call to GetDeviceSet for GetGpuInfo";
    const std::wstring cdrom = L"ERR Failed call to GetDeviceSet for GetCDRomInfo";
    const std::wstring sound = L"ERR Failed call to GetDeviceSet for GetSoundInfo";
    const struct {
        void (*spoil)(SetupEntryPoints&);
        const char* results;
        Lines first;  // of the lines
    } rows[] = {
        {[](SetupEntryPoints& table) { table.getClassDevs = &NoSet; },
         "000000",
         {set, set, gpu, set, set, cdrom, set, sound, set, sound}},
        {[](SetupEntryPoints& table) { table.getClassDevs = &ThrowingSet; },
         "000000",
         {thrown, thrown, gpu, thrown, thrown, cdrom, thrown, sound, thrown, sound}},
        {[](SetupEntryPoints& table) { table.getDeviceRegistryProperty = &NoProperty; },
         "111111",
         {property}},
        {[](SetupEntryPoints& table) { table.getDeviceRegistryProperty = &ThrowingProperty; },
         "000111",
         {L"ERR Error in GetHardDriveInfo", L"ERR Error in GetGpuInfo", L"ERR Error in GetScsiInfo"}},
        {[](SetupEntryPoints& table) { table.openDevRegKey = &NoKey; },
         "111111",
         {L"WARN Error in call to SetupDiOpenDevRegKey for hardware key: 2"}},
    };
    for (const auto& row : rows) {
        SetupLib library([&row](SetupEntryPoints& table) {
            SetupEntryPoints::Load(table);
            row.spoil(table);
            return true;
        });
        auto [results, lines] = AskAll(library);
        EXPECT_EQ(results, row.results) << row.first[0].c_str();
        lines.resize(std::min(lines.size(), row.first.size()));
        EXPECT_EQ(lines, row.first);
    }
}

}  // namespace
}  // namespace kel
