#include <gmock/gmock.h>

#include <filesystem>
#include <set>

#include "detectors/Detectors.h"
#include "detectors/ProductTables.h"
#include "probes/software/Command.h"
#include "support/LogCapture.h"
#include "support/Machines.h"
#include "support/PlantedSoftware.h"
#include "support/TestFiles.h"
#include "support/TestFolder.h"
#include "support/TestSession.h"
#include "values/Text.h"
#include "values/TextMatch.h"

namespace kel {
namespace {

using test::Lines;
using testing::Contains, testing::Not;

constexpr const wchar_t* ListKey = L"software\\microsoft\\windows\\currentversion\\uninstall";

/// Expects that only files and keys were read that the tables name.
void ExpectOnlyPlacesOfTables(const test::PlantedSoftware& planted)
{
    constexpr const wchar_t* AppPaths = L"software\\microsoft\\windows\\currentversion\\app paths\\";
    std::set<std::wstring> programs,
        places = {
            L"software\\clients\\startmenuinternet", L"software\\registeredapplications",
            L"software\\microsoft\\windows\\shell\\associations\\urlassociations\\https\\userchoice",
            L"software\\microsoft\\windows\\shell\\associations\\urlassociations\\https\\userchoicelatest",
            L"software\\microsoft\\windows\\shell\\associations\\urlassociations\\https\\userchoicelatest\\"
            L"progid"};
    for (const auto table : {BrowserTable(), ApplicationTable(), RuntimeTable()}) {
        for (const Product& product : table) {
            for (const std::wstring_view program : SplitList(product.programs))
                programs.insert(ToLower(std::wstring(FileNameOf(program))));
            for (const Locator& locator : product.locators) {
                if (locator.condition != nullptr)
                    places.insert(ToLower(locator.condition->key));
                places.insert(ToLower(locator.where).substr(0, ToLower(locator.where).find(L"\\*")));
            }
        }
    }
    for (const std::wstring& path : planted.files)
        EXPECT_TRUE(programs.contains(std::wstring(FileNameOf(path)))) << path;
    for (const std::wstring& key : planted.keys) {
        const bool isOfProgram = key.starts_with(AppPaths) && programs.contains(key.substr(wcslen(AppPaths)));
        EXPECT_TRUE(places.contains(key) || isOfProgram || key.starts_with(ListKey)) << key;
    }
}

TEST(Applications, IgnoreProgramsOutsideTheTables)
{
    test::Machine machine;
    machine.Add(
        L"+ 73220[0]=Yes; 73221[0]=24.8.0.3; 73224[0]=Yes\n"
        L"+ 73225[0]=24.002.20857; 73226[0]=Yes; 73227[0]=24.08.00.0; 73228[0]=Yes; 73229[0]=3.0.20\n"
        L"+ 73234[0]=Yes; 73235[0]=5.9.7; 73242[0]=Yes; 73243[0]=21.0.3.9; 73244[0]=Yes; 73245[0]=1.65.2");
    const Lines rows = test::ReadRows("uninstall.txt");
    ASSERT_GE(rows.size(), 60U);
    Lines secrets = {L"Secret"};
    for (std::size_t place = 0; place < rows.size(); ++place) {
        constexpr const wchar_t* Views[] = {L"64 U:", L"32 U:", L"CU U:"};
        const Lines fields = test::Split(rows[place], L'|');
        const bool isOfTable = fields.size() > 4;
        const std::wstring folder =
            isOfTable ? fields[4].substr(0, fields[4].find(L'\\')) : L"Secret " + fields[0];
        machine.Add(Views[place % 3] + fields[0] + L"|DisplayName=" + fields[1] + L"|DisplayVersion=" +
                    fields[2] + L"|Publisher=" + fields[3] + L"|InstallLocation=C:\\" + folder);
        if (isOfTable)
            machine.Add(L"file C:\\" + fields[4]);
        else
            std::ranges::copy_if(fields, std::back_inserter(secrets),
                                 [](const std::wstring& field) { return field.size() > 3; });
    }
    const test::PlantedSoftware planted(machine);
    const Lines stored = test::FindSoftware(planted.functions);
    EXPECT_EQ(stored, machine.Stored(L"+"));
    for (const std::wstring& secret : secrets)
        EXPECT_THAT(stored, testing::Each(Not(testing::HasSubstr(secret)))) << secret;
    EXPECT_THAT(planted.files, testing::Each(Not(testing::HasSubstr(L"secret"))));
    ExpectOnlyPlacesOfTables(planted);
}

struct FaultySoftware : testing::Test {
    const test::Machine machine = test::ReadMachines("faulty_software.txt").front();
    test::PlantedSoftware planted{machine};
};

TEST_F(FaultySoftware, IgnoresValuesOfAWrongType)
{
    for (const DWORD type :
         std::initializer_list<DWORD>{REG_NONE, REG_BINARY, REG_DWORD, REG_MULTI_SZ, REG_QWORD, 0xFFFF0007}) {
        planted.Plant(machine, type);
        EXPECT_EQ(test::FindSoftware(planted.functions), Lines()) << type;
    }
}

TEST_F(FaultySoftware, LogsTheSourceOfABrowserThatThrows)
{
    planted.functions.versionRecord = [](auto...) -> std::vector<BYTE> { throw 1; };
    {
        const test::TestSession session;
        Browser().Detect(planted.functions);
        EXPECT_EQ(session.Why(73014), L"the detector failed");
    }
    planted.functions.programId = [](auto...) -> std::wstring { throw 1; };
    planted.functions.hostProgram = []() -> std::wstring { throw 1; };
    const test::LogCapture log(1);
    test::FindSoftware(planted.functions);
    EXPECT_THAT(log.Lines(), testing::IsSupersetOf({L"ERR Error while reading the choice of a browser.",
                                                    L"ERR Error while looking for a browser.",
                                                    L"ERR Error while reading the host's version."}));
}

TEST_F(FaultySoftware, KeepsOtherSourcesWhenOneFails)
{
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
    Lines expected = machine.Stored(L"+");
    expected.resize(expected.size() -
                    3);  // the one of which reading throws, and the version of the one before
    expected.emplace_back(L"73229[0]=4.4");
    const test::LogCapture log(2);
    EXPECT_EQ(test::FindSoftware(planted.functions), expected);
    const std::wstring warning = L"WARN The installer cannot list its products: 1601";
    EXPECT_EQ(log.Lines(), (Lines{warning, warning, L"ERR Error while looking for a product."}));
    EXPECT_EQ(refused, 2);  // once in each detector
    const test::TestSession session;
    Software().Detect(planted.functions);
    Applications().Detect(planted.functions);
    EXPECT_EQ(session.Text(73552), L"No");
    EXPECT_EQ(session.Text(73553), L"");  // of the installer alone
    EXPECT_EQ(session.Text(73240), L"");  // of which reading threw
    EXPECT_EQ(session.Why(73553), L"not readable: the Windows Installer, error 1601");
    EXPECT_EQ(session.Why(73240), L"the detector failed");
    EXPECT_EQ(session.Why(73523), L"not there");
}

TEST(Applications, ReadOnlyTheNamesOfTwentyThousandOtherEntries)
{
    test::PlantedSoftware planted{test::Machine()};
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
    for (int entry = 0; entry < 20001; ++entry)
        RegSetKeyValueW(list.get(), std::to_wstring(entry).c_str(), L"DisplayName", REG_SZ, L"Program", 16);
    Applications().Detect(planted.functions);
    EXPECT_EQ(opened, without + 20000);
}

TEST(Software, ReadsRealKeysFilesAndVersions)
{
    const test::PlantedSoftware planted{test::Machine()};
    const test::TestFolder folder;
    std::filesystem::copy_file(test::TestFile(KEL_VERSIONED), folder.Path() / "vlc.exe");
    SetEnvironmentVariableW(L"KEL_TEST", folder.Path().c_str());
    planted.userKeys.Write(L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\vlc.exe", nullptr,
                           L"\"%KEL_TEST%\\vlc.exe\" --option");
    const test::LogCapture log(3);
    const test::TestSession session;
    Applications().Detect();
    EXPECT_EQ(session.Texts({73226, 73228, 73229}), L"No|Yes|4.3.2.1|");
    EXPECT_THAT(log.Lines(),
                Contains(L"TRACE Applications[0] VLC from App Paths, version from its file or key"));
    Browser().Detect();
    EXPECT_EQ(session.Text(73003), L"kel_tests.exe");
    const SoftwareFunctions system = SoftwareFunctions::OfSystem();
    EXPECT_EQ(system.expand(L"C:\\plain"), L"C:\\plain");
    EXPECT_TRUE(system.versionRecord(L"C:\\windows\\win.ini").empty());
    EXPECT_TRUE(system.versionRecord(L"C:\\gone.exe").empty());
    EXPECT_TRUE(system.packages(L"MSTeams_8wekyb3d8bbwe").empty());
}

}  // namespace
}  // namespace kel
