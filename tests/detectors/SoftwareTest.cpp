#include <gmock/gmock.h>

#include <filesystem>
#include <set>

#include "detectors/Detectors.h"
#include "detectors/ProductTables.h"
#include "probes/Command.h"
#include "support/LogCapture.h"
#include "support/Machines.h"
#include "support/PlantedDevice.h"
#include "support/PlantedSoftware.h"
#include "support/TestSession.h"
#include "values/Text.h"
#include "values/TextMatch.h"
#include "values/Version.h"

namespace kel {
namespace {

using test::Lines;
using testing::Contains, testing::Not;

TEST(Software, RepeatsTheDriversOfTheDevicesThatMatter)
{
    test::TestSession session;
    const test::PlantedSoftware planted({});
    test::PlantedDevice scsi(test::ScsiClass);
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

TEST(Browser, IsThereWithItsFileAndNotAsAChannel)
{
    const Lines rows = test::ReadRows("browsers.txt");
    ASSERT_GE(rows.size(), 12U);
    for (const std::wstring& row : rows) {
        const Lines fields = test::Split(row, L';');  // id or 0, key, file
        const std::wstring next = std::to_wstring(std::stoul(fields[0]) + 1);
        const test::SoftwareMachine machine = {
            fields[1], fields[2] + L"|9.8.7.6",
            fields[0] == L"0" ? L"" : L"73000=Yes|73001=1|" + fields[0] + L"=Yes|" + next + L"=9.8.7.6"};
        const test::PlantedSoftware planted(machine);
        EXPECT_EQ(test::DetectSoftware(planted.functions), test::ExpectedSoftware(machine)) << row;
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
        const test::PlantedSoftware planted(
            {keys + std::wstring(LR"(
64 A:firefox.exe|=C:\Fox\firefox.exe
CU Microsoft\Windows\Shell\Associations\UrlAssociations\https\UserChoice|ProgId=FirefoxURL-1)"),
             L"C:\\Fox\\firefox.exe|1.2.3.4\nC:\\Firefox Nightly\\firefox.exe"});
        EXPECT_THAT(test::DetectSoftware(planted.functions), Contains(std::wstring(L"73002[0]=") + name))
            << keys;
    }
}

TEST(Applications, AreEntriesWhoseProgramIsThere)
{
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        // further values of an entry, and the version that is stored; empty when the program is not there
        {L"64|InstallLocation=C:\\Vlc", L"3.0.20.0"},
        {L"32|InstallLocation=\"C:\\Vlc\\\"", L"3.0.20.0"},
        {L"CU|DisplayIcon=C:\\Vlc\\vlc.exe,0", L"3.0.20.0"},
        {L"64|UninstallString=\"C:\\Vlc\\uninstall.exe\" /S", L"3.0.20.0"},
        {L"64|InstallLocation=D:\\Plain", L"4.4"},  // no version record
        {L"64|InstallLocation=C:\\Old\n32 U:VLC media player|a=|InstallLocation=C:\\Vlc", L"3.0.20.0"},
        {L"64|InstallLocation=D:\\Plain\n64 A:vlc.exe|=C:\\Old\\vlc.exe", L"3.0.9.1"},  // files come first
        {L"64|InstallLocation=C:\\Gone\n32 U:VLC media player|InstallLocation=C:\\Vlc", L""},
        {L"64|InstallLocation=E:\\Vlc", L""},
        {L"64|UninstallString=MsiExec.exe /X{1}", L""},
        {L"64|InstallLocation=C:\\Vlc|SystemComponent=#1", L""},
        {L"64|InstallLocation=C:\\Vlc|SystemComponent=#0", L"3.0.20.0"},
        {L"64|InstallLocation=C:\\Vlc|ParentKeyName=Other", L""},
        {L"64|InstallLocation=C:\\Vlc|ReleaseType=Security Update", L""},
        {L"64|InstallLocation=C:\\Vlc|DisplayName=Update for VLC (KB123456)", L""},
    };
    for (const auto& [values, version] : rows) {
        std::wstring keys(values);
        keys.insert(2, L" U:VLC media player|DisplayVersion=4.4");
        const test::SoftwareMachine machine = {
            keys, L"C:\\Vlc\\vlc.exe|3.0.20.0\nC:\\Old\\vlc.exe|3.0.9.1\nD:\\Plain\\vlc.exe",
            *version == L'\0' ? L"" : std::wstring(L"73228=Yes|73229=") + version};
        EXPECT_EQ(test::DetectSoftware(test::PlantedSoftware(machine).functions),
                  test::ExpectedSoftware(machine))
            << values;
    }
}

constexpr const wchar_t* ListKey = L"software\\microsoft\\windows\\currentversion\\uninstall";

/// Of files, only programs of the tables; of keys, only their places.
void ExpectOnlyPlacesOfTables(const test::PlantedSoftware& planted)
{
    constexpr const wchar_t* AppPaths = L"software\\microsoft\\windows\\currentversion\\app paths\\";
    std::set<std::wstring> programs,
        places = {L"software\\clients\\startmenuinternet", L"software\\registeredapplications",
                  L"software\\microsoft\\windows\\shell\\associations\\urlassociations\\https\\userchoice"};
    for (const auto table : {BrowserTable(), ApplicationTable(), RuntimeTable()}) {
        for (const Product& product : table) {
            for (const std::wstring_view program : SplitList(product.programs))
                programs.insert(ToLower(std::wstring(FileNameOf(program))));
            for (const Locator& locator : product.locators)
                places.insert(ToLower(locator.where).substr(0, ToLower(locator.where).find(L"\\*")));
        }
    }
    for (const std::wstring& path : planted.files)
        EXPECT_TRUE(programs.contains(std::wstring(FileNameOf(path)))) << path;
    for (const std::wstring& key : planted.keys)
        EXPECT_TRUE(places.contains(key) || key.starts_with(AppPaths) || key.starts_with(ListKey)) << key;
}

TEST(Applications, LookForNoOthersAndStoreNothingOfThem)
{
    test::SoftwareMachine machine;
    machine.stored =
        L"73220=Yes|73221=24.8.0.3|73224=Yes|73225=24.002.20857|73226=Yes|73227=24.08.00.0|73228=Yes\n"
        L"73229=3.0.20|73234=Yes|73235=5.9.7|73242=Yes|73243=21.0.3.9|73244=Yes|73245=1.65.2";
    const Lines rows = test::ReadRows("uninstall.txt");
    ASSERT_GE(rows.size(), 60U);
    Lines secrets = {L"Secret"};
    for (std::size_t place = 0; place < rows.size(); ++place) {
        constexpr const wchar_t* Views[] = {L"64 U:", L"32 U:", L"CU U:"};
        const Lines fields = test::Split(rows[place], L'|');
        const bool isOfTable = fields.size() > 4;
        const std::wstring folder =
            isOfTable ? fields[4].substr(0, fields[4].find(L'\\')) : L"Secret " + fields[0];
        machine.keys += Views[place % 3] + fields[0] + L"|DisplayName=" + fields[1] + L"|DisplayVersion=" +
                        fields[2] + L"|Publisher=" + fields[3] + L"|InstallLocation=C:\\" + folder + L"\n";
        if (isOfTable)
            machine.files += L"C:\\" + fields[4] + L"\n";
        else
            std::ranges::copy_if(fields, std::back_inserter(secrets),
                                 [](const std::wstring& field) { return field.size() > 3; });
    }
    const test::PlantedSoftware planted(machine);
    const Lines stored = test::DetectSoftware(planted.functions);
    EXPECT_EQ(stored, test::ExpectedSoftware(machine));
    for (const std::wstring& secret : secrets)
        EXPECT_THAT(stored, testing::Each(Not(testing::HasSubstr(secret)))) << secret;
    EXPECT_THAT(planted.files, testing::Each(Not(testing::HasSubstr(L"secret"))));
    ExpectOnlyPlacesOfTables(planted);
}

constexpr const wchar_t* Faulty =
    LR"(
64 U:VLC media player|DisplayName=VLC media player|Publisher=VideoLAN|DisplayVersion=4.4|DisplayIcon=C:\Vlc\vlc.exe
64 U:Steam|DisplayName=Steam|Publisher=Valve|InstallLocation=C:\Steam
64 A:chrome.exe|=C:\Chrome\chrome.exe
64 Microsoft\PowerShell\3\PowerShellEngine|PowerShellVersion=5.1
64 Microsoft\NET Framework Setup\NDP\v4\Full|Version=4.0.30319|Release=533320
CU Microsoft\Windows\Shell\Associations\UrlAssociations\https\UserChoice|ProgId=ChromeHTML)";
const test::SoftwareMachine FaultyMachine = {
    Faulty,
    LR"(
C:\Vlc\vlc.exe|3.0.20.0
C:\Steam\steam.exe|8.1.0.0
C:\Chrome\chrome.exe|120.0.0.1
C:\Windows\Microsoft.NET\Framework64\v4.0.30319\clr.dll
C:\Windows\System32\WindowsPowerShell\v1.0\powershell.exe)",
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
    int refused = 0;
    planted.functions.relatedProduct = [&refused](auto...) -> UINT {
        ++refused;
        return ERROR_INSTALL_SERVICE_FAILURE;
    };
    planted.functions.versionRecord = [versions = planted.functions.versionRecord](const wchar_t* path) {
        std::vector<BYTE> record = versions(path);
        if (path[3] == L'V')
            record.resize(60);
        return path[3] == L'S' ? throw std::bad_alloc() : record;
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
    planted.machineKeys.Make(ListKey);
    const OwnedKey list = OpenKey(HKEY_LOCAL_MACHINE, ListKey, KEY_ALL_ACCESS);
    for (int entry = 0; entry < 10000; ++entry)
        RegSetKeyValueW(list.get(), std::to_wstring(entry).c_str(), L"DisplayName", REG_SZ, L"Program", 16);
    Applications().Detect(planted.functions);
    EXPECT_EQ(opened, without + 10000);
}

TEST(Software, ReadsRealKeysFilesAndVersions)
{
    const test::PlantedSoftware planted({});
    std::filesystem::copy_file(KEL_VERSIONED, "vlc.exe", std::filesystem::copy_options::overwrite_existing);
    SetEnvironmentVariableW(L"KEL_TEST", std::filesystem::current_path().c_str());
    planted.userKeys.Write(L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\vlc.exe", nullptr,
                           L"\"%KEL_TEST%\\vlc.exe\" --option");
    const test::LogCapture log(3);
    const test::TestSession session;
    Applications().Detect();
    EXPECT_EQ(session.Texts({73226, 73228, 73229}), L"No|Yes|4.3.2.1|");
    EXPECT_THAT(log.Lines(), Contains(L"TRACE Applications[0] VLC from App Paths"));
    std::filesystem::remove("vlc.exe");
    Browser().Detect();
    EXPECT_EQ(session.Text(73003), L"kel_tests.exe");
    const SoftwareFunctions system = SoftwareFunctions::OfSystem();
    EXPECT_TRUE(system.versionRecord(L"C:\\windows\\win.ini").empty());
    EXPECT_TRUE(system.versionRecord(L"C:\\gone.exe").empty());
    EXPECT_TRUE(system.packages(L"MSTeams_8wekyb3d8bbwe").empty());
}

}  // namespace
}  // namespace kel
