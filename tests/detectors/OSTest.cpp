#include "detectors/OS.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "detectors/MachineIdentifier.h"
#include "detectors/OSName.h"
#include "support/LogCapture.h"
#include "support/ScratchKey.h"
#include "support/TestSession.h"

namespace kel {
namespace {

OSInfo Info(DWORD major, DWORD minor, BYTE productType, WORD architecture, DWORD edition = 0,
            WORD suiteMask = 0, const wchar_t* servicePack = L"", DWORD build = 1, bool isServerR2 = false)
{
    return {true, 2,         major,       minor,        build,   servicePack, 0,
            0,    suiteMask, productType, architecture, edition, isServerR2};
}

TEST(OSName, FollowsReleaseEditionArchitectureAndServicePack)
{
    const struct {
        OSInfo info;
        std::wstring text;
        std::vector<unsigned> flags;
    } rows[] = {
        {Info(6, 1, 1, 9, 1, 0, L"Service Pack 1", 7601),
         L"Windows 7 Ultimate Edition Service Pack 1 (build 7601), 64-bit",
         {71264, 71361, 71350}},
        {Info(6, 0, 1, 0, 3, 0, L"", 6000),
         L"Windows Vista Home Premium Edition (build 6000), 32-bit",
         {71251, 71274}},
        {Info(6, 0, 1, 9, 1),
         L"Windows Vista Ultimate Edition (build 1), 64-bit",
         {71264, 71361, 71251, 71275}},
        {Info(6, 0, 1, 0, 2), L"Windows Vista Home Basic Edition (build 1), 32-bit", {71251, 71273}},
        {Info(6, 0, 1, 0, 4), L"Windows Vista Enterprise Edition (build 1), 32-bit", {71251, 71272}},
        {Info(6, 0, 1, 0, 6), L"Windows Vista Business Edition (build 1), 32-bit", {71251, 71271}},
        {Info(6, 0, 1, 0, 0xB), L"Windows Vista Starter Edition (build 1), 32-bit", {71251}},
        {Info(6, 0, 3, 9, 7),
         L"Windows Server 2008 Standard Edition (build 1), 64-bit",
         {71264, 71361, 71465}},
        {Info(6, 0, 2, 0, 8), L"Windows Server 2008 Datacenter Edition (build 1), 32-bit", {71465}},
        {Info(6, 0, 3, 0, 4), L"Windows Server 2008 Enterprise Edition (build 1), 32-bit", {71465}},
        {Info(6, 0, 3, 6, 0xF),
         L"Windows Server 2008 Enterprise Edition for Itanium-based Systems (build 1)",
         {71264, 71360, 71465}},
        {Info(6, 0, 3, 0, 9), L"Windows Server 2008 Small Business Server (build 1), 32-bit", {71465}},
        {Info(6, 0, 3, 0, 0xA), L"Windows Server 2008 Enterprise Edition (build 1), 32-bit", {71465}},
        {Info(6, 0, 3, 0, 0xC),
         L"Windows Server 2008 Datacenter Edition (core installation) (build 1), 32-bit",
         {71465}},
        {Info(6, 0, 3, 0, 0xD),
         L"Windows Server 2008 Standard Edition (core installation) (build 1), 32-bit",
         {71465}},
        {Info(6, 0, 3, 0, 0xE),
         L"Windows Server 2008 Enterprise Edition (core installation) (build 1), 32-bit",
         {71465}},
        {Info(6, 1, 3, 9, 0x11),
         L"Windows Server 2008 R2 Web Server Edition (build 1), 64-bit",
         {71264, 71361, 71466}},
        {Info(6, 1, 3, 0, 0x12), L"Windows Server 2008 R2 Cluster Server Edition (build 1), 32-bit", {71466}},
        {Info(6, 1, 3, 0, 0x19),
         L"Windows Server 2008 R2 Small Business Server Premium Edition (build 1), 32-bit",
         {71466}},
        {Info(6, 1, 1, 5, 5), L"Windows 7  (build 1)", {71350}},
        {Info(6, 2, 1, 9, 0x30), L" (build 1), 64-bit", {71264, 71361}},
        {Info(6, 2, 1, 9, 4), L"Enterprise Edition (build 1), 64-bit", {71264, 71361}},
        {Info(10, 0, 1, 9, 1, 0, L"", 19045), L" (build 19045), 64-bit", {71264, 71361}},
        {Info(5, 2, 3, 0, 0, 0, L"", 1, true),
         L"Windows Server 2003 R2, Standard Edition (build 1)",
         {71263}},
        {Info(5, 2, 3, 0, 0, 0x2000), L"Windows Storage Server 2003Standard Edition (build 1)", {71263}},
        {Info(5, 2, 3, 0, 0, 0x2002), L"Windows Server 2003, Enterprise Edition (build 1)", {71263}},
        {Info(5, 2, 1, 0), L"Windows Server 2003,  (build 1)", {71263}},
        {Info(5, 2, 1, 9, 0, 0, L"Service Pack 2", 3790),
         L"Windows XP Professional x64 Edition Service Pack 2 (build 3790)",
         {71264, 71361, 71276}},
        {Info(5, 2, 3, 6, 0, 0x82),
         L"Windows Server 2003, Datacenter Edition for Itanium-based Systems (build 1)",
         {71264, 71360, 71263}},
        {Info(5, 2, 3, 6, 0, 2),
         L"Windows Server 2003, Enterprise Edition for Itanium-based Systems (build 1)",
         {71264, 71360, 71263}},
        {Info(5, 2, 3, 6), L"Windows Server 2003,  (build 1)", {71264, 71360, 71263}},
        {Info(5, 2, 3, 9, 0, 0x80),
         L"Windows Server 2003, Datacenter x64 Edition (build 1)",
         {71264, 71361, 71263}},
        {Info(5, 2, 2, 9, 0, 2),
         L"Windows Server 2003, Enterprise x64 Edition (build 1)",
         {71264, 71361, 71263}},
        {Info(5, 2, 3, 9), L"Windows Server 2003, Standard x64 Edition (build 1)", {71264, 71361, 71263}},
        {Info(5, 2, 3, 0, 0, 0x4080), L"Windows Server 2003, Compute Cluster Edition (build 1)", {71263}},
        {Info(5, 2, 3, 0, 0, 0x480), L"Windows Server 2003, Datacenter Edition (build 1)", {71263}},
        {Info(5, 2, 3, 0, 0, 0x402), L"Windows Server 2003, Enterprise Edition (build 1)", {71263}},
        {Info(5, 2, 3, 0, 0, 0x400), L"Windows Server 2003, Web Edition (build 1)", {71263}},
        {Info(5, 1, 1, 0, 0, 0x200), L"Windows XP Home Edition (build 1)", {71276}},
        {Info(5, 1, 1, 0), L"Windows XP Professional (build 1)", {71276}},
        {Info(5, 0, 1, 0, 0, 0x80), L"Windows 2000 Professional (build 1)", {71262}},
        {Info(5, 0, 3, 0, 0, 0x82), L"Windows 2000 Datacenter Server (build 1)", {71262}},
        {Info(5, 0, 3, 0, 0, 2), L"Windows 2000 Advanced Server (build 1)", {71262}},
        {Info(5, 0, 2, 0), L"Windows 2000 Server (build 1)", {71262}},
        {Info(5, 3, 1, 0), L" (build 1)", {}},
    };
    for (const auto& row : rows) {
        const OSName name = BuildDisplayName(row.info);
        EXPECT_TRUE(name.isBuilt);
        EXPECT_EQ(name.text, L"Microsoft " + row.text);
        EXPECT_EQ(name.flags, row.flags) << row.text.c_str();
    }
}

TEST(OSName, IsCutAtItsLongestAndMissingForForeignSystems)
{
    const std::wstring longPack(300, L'x');
    const std::wstring text = BuildDisplayName(Info(5, 0, 1, 0, 0, 0, longPack.c_str())).text;
    EXPECT_EQ(text.size(), 255U);
    EXPECT_TRUE(text.starts_with(L"Microsoft Windows 2000 Professional xxx"));
    OSInfo old = Info(4, 0, 1, 0);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(BuildDisplayName(old).isBuilt);
    old = Info(5, 0, 1, 0);
    old.platform = 1;
    EXPECT_FALSE(BuildDisplayName(old).isBuilt);
    const std::string line = "This sample does not support this version of Windows.\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), line + line);
    old.hasVersion = false;
    EXPECT_FALSE(BuildDisplayName(old).isBuilt);
}

TEST(MachineIdentifier, IsKeptOnlyWhereItsKeyExists)
{
    const std::wregex form(L"[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}");
    test::ScratchKey user;
    user.StandFor(HKEY_CURRENT_USER);
    const std::wstring first = GetMachineIdentifier();
    EXPECT_TRUE(std::regex_match(first, form)) << first.c_str();
    EXPECT_NE(GetMachineIdentifier(), first);
    EXPECT_EQ(user.Dump(), L"[]\n");

    user.Make(L"software\\Keldane");
    const std::wstring kept = GetMachineIdentifier();
    EXPECT_EQ(user.Dump(L"software\\Keldane"), L"[]\nRun={" + kept + L"}\n");
    EXPECT_EQ(GetMachineIdentifier(), kept);

    user.Write(L"software\\Keldane", L"Run", L"");
    EXPECT_TRUE(std::regex_match(GetMachineIdentifier(), form));
    user.Write(L"software\\Keldane", L"Run", L"{a}b}{");
    EXPECT_EQ(GetMachineIdentifier(), L"ab");
    user.Write(L"software\\Keldane", L"Run", REG_SZ, L"{xyz}", 5 * sizeof(wchar_t));  // no terminating zero
    EXPECT_EQ(GetMachineIdentifier(), L"xyz");
    const DWORD number = 7;
    user.Write(L"software\\Keldane", L"Run", REG_DWORD, &number, sizeof(number));
    EXPECT_TRUE(std::regex_match(GetMachineIdentifier(), form));
}

constexpr const wchar_t* Frameworks = L"SOFTWARE\\Microsoft\\NET Framework Setup\\NDP\\";

TEST(OS, TakesTheLastReadableFramework)
{
    test::ScratchKey machine;
    machine.StandFor(HKEY_LOCAL_MACHINE);
    test::TestSession session;
    OS().Detect();
    EXPECT_EQ(session.Text(71193), L"(none)");
    const std::wstring key = Frameworks;
    machine.Write(key + L"a", L"Version", L"4.0");
    machine.Write(key + L"b", L"Version", L"2.0.50727");
    machine.Make(key + L"c");
    machine.Write(key + L"d", L"Version", std::wstring(100, L'9'));  // too long with its zero
    machine.Write(key + std::wstring(120, L'e'), L"Version", L"9");
    const DWORD number = 7;
    machine.Write(key + L"f", L"Version", REG_DWORD, &number, sizeof(number));
    const test::LogCapture log(3);
    OS().Detect();
    EXPECT_EQ(session.Text(71193), L"2.0.50727");
    EXPECT_EQ(std::ranges::count(log.Lines(), L"TRACE Using version: 4.0"), 1);
}

TEST(OS, KeepsTheOtherFactsWhenAFunctionIsMissing)
{
    const OSFunctions whole = OSFunctions::OfSystem();
    OSFunctions none = whole;
    none.getVersion = [](OSVERSIONINFOEXW&) { return FALSE; };
    none.getNativeSystemInfo.clear();
    none.getProductInfo.clear();
    none.isWow64Process = [](HANDLE, BOOL*) { return FALSE; };
    test::TestSession session;
    EXPECT_TRUE(OS().Detect(none));
    for (const unsigned missing : {71060U, 71072U, 71309U, 71363U, 71388U})
        EXPECT_EQ(session.Text(missing), L"(none)") << missing;
    EXPECT_EQ(session.Text(71264), L"No");
    EXPECT_EQ(session.Text(71207).size(), 36U);

    OSFunctions vista = whole;
    vista.getVersion = [](OSVERSIONINFOEXW& version) {
        version.dwPlatformId = 2;
        version.dwMajorVersion = 6;
        version.dwBuildNumber = 6002;
        version.wProductType = 1;
        version.wServicePackMajor = 2;
        version.wSuiteMask = 256;
        return TRUE;
    };
    vista.getProductInfo.clear();
    vista.isWow64Process = [](HANDLE, BOOL* isEmulated) { return *isEmulated = TRUE; };
    vista.getNativeSystemInfo = [](SYSTEM_INFO& system) { system.wProcessorArchitecture = 0; };
    EXPECT_TRUE(OS().Detect(vista));
    const std::pair<unsigned, const wchar_t*> stored[] = {
        {71060, L"Microsoft Windows Vista  (build 6002), 32-bit"},
        {71072, L"6.0.6002"},
        {71309, L"6.0.6002"},
        {71367, L"6"},
        {71368, L"0"},
        {71366, L"6002"},
        {71364, L"2"},
        {71365, L"0"},
        {71363, L"256"},
        {71362, L"1"},
        {71251, L"Yes"},
        {71264, L"Yes"},
        {71361, L"No"}};
    for (const auto& [id, text] : stored)
        EXPECT_EQ(session.Text(id), text) << id;
    EXPECT_TRUE(std::regex_match(session.Text(71388), std::wregex(L"[0-9A-F]{4}")));
}

TEST(OS, StoresItsFlagsFirstAndAnErrorLeavesThem)
{
    OSFunctions throwing = OSFunctions::OfSystem();
    throwing.getVersion = [](OSVERSIONINFOEXW&) -> BOOL { throw 1; };
    test::TestSession session;
    const test::LogCapture log(1);
    EXPECT_TRUE(OS().Detect(throwing));
    EXPECT_EQ(log.Lines(), std::vector<std::wstring>{L"ERR Error in OS detection."});
    std::vector<unsigned> order;
    for (const SystemValue& value : session.values)
        order.push_back(value.ID().Group().Number());
    EXPECT_EQ(order,
              (std::vector<unsigned>{71262, 71263, 71264, 71361, 71360, 71265, 71266, 71310, 71267, 71270,
                                     71251, 71271, 71272, 71273, 71274, 71275, 71276, 71350, 71465, 71466}));
}

}  // namespace
}  // namespace kel
