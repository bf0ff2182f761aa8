#include <gmock/gmock.h>

#include <filesystem>
#include <set>

#include "detectors/Detectors.h"
#include "detectors/ProductTables.h"
#include "machines/Software.h"
#include "machines/UninstallEntries.h"
#include "probes/Command.h"
#include "support/LogCapture.h"
#include "support/PlantedDevice.h"
#include "support/TestSession.h"
#include "values/Text.h"
#include "values/TextMatch.h"
#include "values/Version.h"

namespace kel {
namespace {

using testing::Contains, testing::Not;
using Lines = std::vector<std::wstring>;

TEST(Software, OfFiveMachinesIsWhatIsThereAndTwiceTheSame)
{
    for (const test::SoftwareMachine& machine : test::SoftwareMachines) {
        const test::PlantedSoftware planted(machine);
        const Lines stored = test::DetectSoftware(planted.functions);
        EXPECT_EQ(stored, test::ExpectedSoftware(machine)) << machine.name;
        EXPECT_EQ(test::DetectSoftware(planted.functions), stored) << machine.name;
    }
}

TEST(Software, RepeatsTheDriversOfTheDevicesThatMatter)
{
    test::TestSession session;
    const test::PlantedSoftware planted({});
    test::PlantedDevice scsi(0x4D36E97B);
    scsi.With(SPDRP_HARDWAREID, L"PCI\\VEN_1000&DEV_0072")
        .Device(L"a", L"b")
        .Driver(L"DriverVersion", L"2.0.3");
    const std::pair<unsigned, const wchar_t*> drivers[] = {
        {72006, L"31.0.15.4601"}, {72804, L"6.0.9549.1"}, {72706, L""}};
    for (const auto& [id, version] : drivers)
        session.values.AddValue(SystemValueID(GroupID(id)), Version(version));
    session.values.AddValue(SystemValueID(GroupID(72706), 1), Version(L"1.2"));
    Software().Detect(planted.functions);
    EXPECT_EQ(session.Texts({72900, 72901, 72902, 72903}), L"31.0.15.4601|6.0.9549.1||2.0.3|");
}

/// The browsers that are registered, as their makers' programs write it; and the id of the one that is there.
const struct {
    const wchar_t* keys;
    const wchar_t* file;
    unsigned id;  // 0 for none
} Registrations[] = {
    {LR"(64 Clients\StartMenuInternet\IEXPLORE.EXE\shell\open\command|=C:\Program Files\Internet Explorer\iexplore.exe)",
     LR"(C:\Program Files\Internet Explorer\iexplore.exe)", 73010},
    {LR"(64 A:IEXPLORE.EXE|=%ProgramFiles%\Internet Explorer\IEXPLORE.EXE)",
     LR"(C:\Program Files\Internet Explorer\iexplore.exe)", 73010},
    {LR"(32 Clients\StartMenuInternet\Microsoft Edge\shell\open\command|="C:\Program Files (x86)\Microsoft\Edge\Application\msedge.exe")",
     LR"(C:\Program Files (x86)\Microsoft\Edge\Application\msedge.exe)", 73012},
    {LR"(64 A:msedge.exe|=C:\Program Files (x86)\Microsoft\Edge Dev\Application\msedge.exe)",
     LR"(C:\Program Files (x86)\Microsoft\Edge Dev\Application\msedge.exe)", 0},
    {LR"(64 Clients\StartMenuInternet\Google Chrome\shell\open\command|="C:\Program Files\Google\Chrome\Application\chrome.exe")",
     LR"(C:\Program Files\Google\Chrome\Application\chrome.exe)", 73014},
    {LR"(CU Clients\StartMenuInternet\Google Chrome.H2ZQP7W3ZWHWVC5ZTSCOBXSHKE\shell\open\command|="C:\Users\Anna\AppData\Local\Google\Chrome\Application\chrome.exe")",
     LR"(C:\Users\Anna\AppData\Local\Google\Chrome\Application\chrome.exe)", 73014},
    {LR"(CU Clients\StartMenuInternet\Google Chrome SxS\shell\open\command|="C:\Users\Anna\AppData\Local\Google\Chrome SxS\Application\chrome.exe")",
     LR"(C:\Users\Anna\AppData\Local\Google\Chrome SxS\Application\chrome.exe)", 0},
    {LR"(64 A:chrome.exe|=C:\Program Files\Google\Chrome Beta\Application\chrome.exe)",
     LR"(C:\Program Files\Google\Chrome Beta\Application\chrome.exe)", 0},
    {LR"(64 Clients\StartMenuInternet\Firefox-308046B0AF4A39CB\shell\open\command|="C:\Program Files\Mozilla Firefox\firefox.exe")",
     LR"(C:\Program Files\Mozilla Firefox\firefox.exe)", 73016},
    {LR"(32 Clients\StartMenuInternet\FIREFOX.EXE\shell\open\command|=C:\Program Files (x86)\Mozilla Firefox\firefox.exe)",
     LR"(C:\Program Files (x86)\Mozilla Firefox\firefox.exe)", 73016},
    {LR"(64 Clients\StartMenuInternet\Firefox-CA9422711AE1A81C\shell\open\command|="C:\Program Files\Firefox Developer Edition\firefox.exe")",
     LR"(C:\Program Files\Firefox Developer Edition\firefox.exe)", 0},
    {LR"(64 Mozilla\Mozilla Firefox\115.6.0 ESR (x64 de)\Main|PathToExe=D:\Firefox\firefox.exe)",
     LR"(D:\Firefox\firefox.exe)", 73016},
    {LR"(64 Clients\StartMenuInternet\OperaStable\shell\open\command|="C:\Program Files\Opera\Launcher.exe")",
     LR"(C:\Program Files\Opera\launcher.exe)", 73018},
    {LR"(CU Opera Software|Last Stable Install Path=C:\Users\Anna\AppData\Local\Programs\Opera\)",
     LR"(C:\Users\Anna\AppData\Local\Programs\Opera\opera.exe)", 73018},
    {LR"(CU Clients\StartMenuInternet\Opera GXStable\shell\open\command|="C:\Users\Anna\AppData\Local\Programs\Opera GX\Launcher.exe")",
     LR"(C:\Users\Anna\AppData\Local\Programs\Opera GX\Launcher.exe)", 0},
    {LR"(64 BraveSoftware\Update\ClientState\{AFE6A462-C574-4B8A-AF43-4CC60DF4563B}|UninstallString=C:\Program Files\BraveSoftware\Brave-Browser\Application\120.1.61.109\Installer\setup.exe)",
     LR"(C:\Program Files\BraveSoftware\Brave-Browser\Application\brave.exe)", 73020},
    {LR"(64 Clients\StartMenuInternet\Brave\shell\open\command|="C:\Program Files\BraveSoftware\Brave-Browser-Nightly\Application\brave.exe")",
     LR"(C:\Program Files\BraveSoftware\Brave-Browser-Nightly\Application\brave.exe)", 0},
    {LR"(CU Vivaldi|DestinationFolder=C:\Users\Anna\AppData\Local\Vivaldi)",
     LR"(C:\Users\Anna\AppData\Local\Vivaldi\Application\vivaldi.exe)", 73022},
    {LR"(64 A:vivaldi.exe|="C:\Vivaldi\vivaldi.exe" --x)", LR"(C:\Elsewhere\vivaldi.exe)", 0},
    {LR"(64 A:vivaldi.exe|=E:\Vivaldi\vivaldi.exe)", LR"(E:\Vivaldi\vivaldi.exe)", 0},
    {LR"(64 A:vivaldi.exe|=C:\Vivaldi\malware.exe)", LR"(C:\Vivaldi\malware.exe)", 0},
};

TEST(Browser, IsThereWithItsFileAndNotAsAChannel)
{
    for (const auto& row : Registrations) {
        const std::wstring stored = row.id == 0 ? L""
                                                : L"73000=Yes|73001=1|" + std::to_wstring(row.id) + L"=Yes|" +
                                                      std::to_wstring(row.id + 1) + L"=9.8.7.6";
        const std::wstring file = row.file + std::wstring(L"|9.8.7.6");
        const test::SoftwareMachine machine = {L"", row.keys, file.c_str(), L"", stored.c_str()};
        const test::PlantedSoftware planted(machine);
        EXPECT_EQ(test::DetectSoftware(planted.functions), test::ExpectedSoftware(machine)) << row.keys;
        EXPECT_THAT(planted.files, Not(Contains(testing::StartsWith(L"e:"))));
    }
}

TEST(Browser, OfChoiceIsOneThatIsThere)
{
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"", L"Firefox"},
        {LR"(64 Classes\FirefoxURL-1\shell\open\command|="C:\Fox\firefox.exe" -url "%1")", L"Firefox"},
        {LR"(CU Classes\FirefoxURL-1\shell\open\command|="C:\Firefox Nightly\firefox.exe" -url "%1")", L""},
        {LR"(64 Classes\FirefoxURL-1\shell\open\command|="C:\Gone\firefox.exe" -url "%1")", L""},
    };
    for (const auto& [keys, name] : rows) {
        test::PlantedSoftware planted({L"",
                                       LR"(
64 A:firefox.exe|=C:\Fox\firefox.exe
CU Microsoft\Windows\Shell\Associations\UrlAssociations\https\UserChoice|ProgId=FirefoxURL-1)",
                                       L"C:\\Fox\\firefox.exe|1.2.3.4\nC:\\Firefox Nightly\\firefox.exe"});
        planted.Plant(keys);
        EXPECT_THAT(test::DetectSoftware(planted.functions), Contains(std::wstring(L"73002[0]=") + name))
            << keys;
    }
}

constexpr const wchar_t* VlcFile = L"C:\\Vlc\\vlc.exe|3.0.20.0\nC:\\Old\\vlc.exe|3.0.9.1\nD:\\Plain\\vlc.exe";

TEST(Applications, AreEntriesWhoseProgramIsThere)
{
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        // further values, and what is stored
        {L"64|InstallLocation=C:\\Vlc", L"3.0.20.0"},
        {L"32|InstallLocation=\"C:\\Vlc\\\"", L"3.0.20.0"},
        {L"CU|DisplayIcon=C:\\Vlc\\vlc.exe,0", L"3.0.20.0"},
        {L"64|UninstallString=\"C:\\Vlc\\uninstall.exe\" /S", L"3.0.20.0"},
        {L"64|InstallLocation=D:\\Plain", L"4.4"},  // no version record
        {L"64|InstallLocation=C:\\Old\n32 U:VLC media player|a=|DisplayName=VLC media player|"
         L"InstallLocation=C:\\Vlc",
         L"3.0.20.0"},
        {L"64|InstallLocation=D:\\Plain\n64 A:vlc.exe|=C:\\Old\\vlc.exe", L"3.0.9.1"},  // files come first
        {L"64|InstallLocation=C:\\Gone", L"(none)"},
        {L"64|InstallLocation=E:\\Vlc", L"(none)"},
        {L"64|UninstallString=MsiExec.exe /X{1}", L"(none)"},
        {L"64|InstallLocation=C:\\Vlc|SystemComponent=#1", L"(none)"},
        {L"64|InstallLocation=C:\\Vlc|SystemComponent=#0", L"3.0.20.0"},
        {L"64|InstallLocation=C:\\Vlc|ParentKeyName=Other", L"(none)"},
        {L"64|InstallLocation=C:\\Vlc|ReleaseType=Security Update", L"(none)"},
        {L"64|InstallLocation=C:\\Vlc|DisplayName=Update for VLC (KB123456)", L"(none)"},
    };
    for (const auto& [values, version] : rows) {
        std::wstring keys(values);
        keys.insert(2, L" U:VLC media player|DisplayVersion=4.4");
        const std::wstring stored = L"73228=Yes|73229=" + std::wstring(version);
        const test::SoftwareMachine machine = {L"", keys.c_str(), VlcFile, L"",
                                               stored.ends_with(L')') ? L"" : stored.c_str()};
        EXPECT_EQ(test::DetectSoftware(test::PlantedSoftware(machine).functions),
                  test::ExpectedSoftware(machine))
            << values;
    }
    const test::SoftwareMachine remains = {L"", L"64 U:VLC media player|InstallLocation=C:\\Vlc", VlcFile};
    EXPECT_EQ(test::DetectSoftware(test::PlantedSoftware(remains).functions),
              test::ExpectedSoftware(remains));
}

constexpr const wchar_t* AppPaths = L"software\\microsoft\\windows\\currentversion\\app paths\\";
constexpr const wchar_t* UninstallList = L"software\\microsoft\\windows\\currentversion\\uninstall";
constexpr const wchar_t* Choice =
    L"software\\microsoft\\windows\\shell\\associations\\urlassociations\\https\\userchoice";

/// Whether something stored holds the text.
bool Holds(const Lines& stored, const std::wstring& text)
{
    return text.size() > 3 && std::ranges::any_of(stored, [&text](const std::wstring& line) {
               return ToLower(line).find(ToLower(text)) != std::wstring::npos;
           });
}

TEST(Applications, LookForNoOthersAndStoreNothingOfThem)
{
    test::PlantedSoftware planted({});
    std::set<std::wstring> present;
    for (const std::wstring& entry : test::Split(test::EntriesOfTable, L'\n')) {
        const Lines fields = test::Split(entry, L'|');
        const std::wstring folder = L"C:\\" + fields[4].substr(0, fields[4].find(L'\\'));
        planted.Plant(L"64 U:" + fields[0] + L"|DisplayName=" + fields[1] + L"|DisplayVersion=" + fields[2] +
                      L"|Publisher=" + fields[3] + L"|InstallLocation=" + folder);
        present.insert(L"C:\\" + fields[4]);
    }
    const Lines others = test::Split(test::EntriesOfOthers, L'\n');
    ASSERT_GE(others.size() + present.size(), 60U);
    for (std::size_t place = 0; place < others.size(); ++place) {
        const Lines fields = test::Split(others[place], L'|');
        constexpr const wchar_t* Views[] = {L"64 U:", L"32 U:", L"CU U:"};
        planted.Plant(Views[place % 3] + fields[0] + L"|DisplayName=" + fields[1] + L"|DisplayVersion=" +
                      fields[2] + L"|Publisher=" + fields[3] + L"|InstallLocation=C:\\Secret " + fields[0]);
    }
    std::set<std::wstring> asked;
    planted.functions.fileAttributes = [&](const wchar_t* path) {
        asked.insert(path);
        return present.contains(path) ? FILE_ATTRIBUTE_NORMAL : INVALID_FILE_ATTRIBUTES;
    };
    const Lines stored = test::DetectSoftware(planted.functions);
    const test::SoftwareMachine expected = {
        L"", L"", L"", L"",
        L"73220=Yes|73221=24.8.0.3|73224=Yes|73225=24.002.20857|73226=Yes|73227=24.08.00.0|73228=Yes|73229=3."
        L"0.20|"
        L"73234=Yes|73235=5.9.7|73242=Yes|73243=21.0.3.9|73244=Yes|73245=1.65.2"};
    EXPECT_EQ(stored, test::ExpectedSoftware(expected));
    for (const std::wstring& other : others) {
        for (const std::wstring& field : test::Split(other, L'|'))
            EXPECT_FALSE(Holds(stored, field)) << field;
    }
    // Of files, only programs of the tables; of keys, only their places.
    std::set<std::wstring> programs,
        places = {AppPaths, UninstallList, L"software\\clients\\startmenuinternet",
                  L"software\\registeredapplications", Choice};
    for (const auto table : {BrowserTable(), ApplicationTable(), RuntimeTable()}) {
        for (const Product& product : table) {
            for (const std::wstring_view program : SplitList(product.programs))
                programs.insert(ToLower(std::wstring(FileNameOf(program))));
            for (const Locator& locator : product.locators) {
                if (std::wstring_view(locator.where).starts_with(L"SOFTWARE\\"))
                    places.insert(ToLower(locator.where).substr(0, ToLower(locator.where).find(L"\\*")));
            }
        }
    }
    for (const std::wstring& path : asked)
        EXPECT_TRUE(programs.contains(ToLower(std::wstring(FileNameOf(path)))) &&
                    path.find(L"Secret") == std::wstring::npos)
            << path;
    for (const std::wstring& key : planted.keys)
        EXPECT_TRUE(places.contains(key) || key.starts_with(UninstallList) || key.starts_with(AppPaths))
            << key;
}

constexpr const wchar_t* Faulty =
    LR"(
64 U:VLC media player|DisplayName=VLC media player|Publisher=VideoLAN|DisplayVersion=4.4|DisplayIcon=C:\Vlc\vlc.exe
64 U:Steam|DisplayName=Steam|Publisher=Valve|InstallLocation=C:\Steam
64 A:chrome.exe|=C:\Chrome\chrome.exe
64 Microsoft\PowerShell\3\PowerShellEngine|PowerShellVersion=5.1
64 Microsoft\NET Framework Setup\NDP\v4\Full|Version=4.0.30319
CU Microsoft\Windows\Shell\Associations\UrlAssociations\https\UserChoice|ProgId=ChromeHTML)";
constexpr test::SoftwareMachine FaultyMachine = {
    L"", Faulty,
    LR"(
C:\Vlc\vlc.exe|3.0.20.0
C:\Steam\steam.exe|8.1.0.0
C:\Chrome\chrome.exe|120.0.0.1
C:\Windows\Microsoft.NET\Framework64\v4.0.30319\clr.dll
C:\Windows\System32\WindowsPowerShell\v1.0\powershell.exe)",
    L"",
    L"72920=4.0.30319|72950=5.1|73000=Yes|73001=1|73002=Chrome|73014=Yes|73015=120.0.0.1|73228=Yes|"
    L"73229=3.0.20.0|73240=Yes|73241=8.1.0.0"};

TEST(Software, TakesNoValueOfAWrongType)
{
    test::PlantedSoftware planted(FaultyMachine);
    EXPECT_EQ(test::DetectSoftware(planted.functions), test::ExpectedSoftware(FaultyMachine));
    for (const DWORD type :
         std::initializer_list<DWORD>{REG_NONE, REG_BINARY, REG_DWORD, REG_MULTI_SZ, REG_QWORD, 0xFFFF0007}) {
        planted.Plant(Faulty, type);
        EXPECT_EQ(test::DetectSoftware(planted.functions), test::ExpectedSoftware({})) << type;
    }
}

TEST(Software, GoesOnWhenASourceFails)
{
    test::PlantedSoftware planted(FaultyMachine);
    const auto versions = planted.functions.versionRecord;
    int refused = 0;
    planted.functions.relatedProduct = [&refused](const wchar_t*, DWORD, wchar_t*) -> UINT {
        ++refused;
        return ERROR_INSTALL_SERVICE_FAILURE;
    };
    planted.functions.versionRecord = [versions](const wchar_t* path) {
        std::vector<BYTE> record = versions(path);
        if (path[3] == L'V')
            record.resize(60);
        if (path[3] == L'S')
            throw std::bad_alloc();
        return record;
    };
    test::SoftwareMachine machine = FaultyMachine;
    machine.stored =
        L"72920=4.0.30319|72950=5.1|73000=Yes|73001=1|73002=Chrome|73014=Yes|73015=120.0.0.1|"
        L"73228=Yes|73229=4.4";
    const test::LogCapture log(2);
    EXPECT_EQ(test::DetectSoftware(planted.functions), test::ExpectedSoftware(machine));
    EXPECT_EQ(log.Lines(), (Lines{L"WARN The installer does not tell its products: 1601",
                                  L"ERR Error while looking for a product."}));
    EXPECT_EQ(refused, 1);
}

TEST(Applications, AskEachOfTenThousandEntriesForItsNameOnly)
{
    test::PlantedSoftware planted({});
    const auto open = planted.functions.openKey;
    int opened = 0;
    planted.functions.openKey = [&](HKEY root, const wchar_t* name, REGSAM access) {
        ++opened;
        return open(root, name, access);
    };
    const test::TestSession session;
    Applications().Detect(planted.functions);
    const int without = std::exchange(opened, 0);
    for (int entry = 0; entry < 10000; ++entry)
        planted.Plant(L"64 U:" + std::to_wstring(entry) + L"|DisplayName=Program|Publisher=Maker");
    Applications().Detect(planted.functions);
    EXPECT_EQ(opened, without + 10000);
}

/// A program file with a version record, in a folder of its own on the machine's disk.
struct RealProgram {
    explicit RealProgram(const wchar_t* file)
    {
        wchar_t temporary[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temporary);
        folder = std::filesystem::path(temporary) / (L"kel" + std::to_wstring(GetCurrentProcessId()));
        std::filesystem::create_directory(folder);
        std::filesystem::copy_file(KEL_VERSIONED, folder / file);
    }
    ~RealProgram() { std::filesystem::remove_all(folder); }
    std::filesystem::path folder;
};

TEST(Software, ReadsRealKeysFilesAndVersions)
{
    const RealProgram program(L"vlc.exe");
    const test::PlantedSoftware planted({});
    const std::wstring path = (program.folder / L"vlc.exe").wstring();
    planted.userKeys.Write(L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\vlc.exe", nullptr,
                           L"%TEMP%" + path.substr(path.rfind(L"\\kel")));
    const test::TestSession session;
    Applications().Detect();
    EXPECT_EQ(session.Texts({73226, 73228, 73229}), L"No|Yes|4.3.2.1|");
    Browser().Detect();
    EXPECT_EQ(session.Text(73003), L"kel_tests.exe");
    const SoftwareFunctions system = SoftwareFunctions::OfSystem();
    EXPECT_TRUE(system.versionRecord(L"C:\\windows\\win.ini").empty());
    EXPECT_TRUE(system.versionRecord(L"C:\\gone.exe").empty());
    EXPECT_TRUE(system.packages(L"MSTeams_8wekyb3d8bbwe").empty());
}

}  // namespace
}  // namespace kel
