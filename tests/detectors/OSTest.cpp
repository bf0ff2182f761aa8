#include "detectors/Detectors.h"

#include <gmock/gmock.h>

#include <regex>

#include "detectors/MachineIdentifier.h"
#include "detectors/OSName.h"
#include "platform/RegistryValue.h"
#include "probes/system/WindowsRelease.h"
#include "support/LogCapture.h"
#include "support/ScratchKey.h"
#include "support/TestSession.h"

namespace kel {
namespace {

enum ProductType : BYTE { Workstation = 1, Controller = 2, Server = 3 };
enum Architecture : WORD { X86 = 0, Arm = 5, Itanium = 6, X64 = 9 };

OSInfo Info(DWORD major, DWORD minor, ProductType type, Architecture architecture, WORD suite = 0,
            DWORD edition = 0)
{
    return {true, 2, major, minor, 1, L"", 0, 0, suite, type, architecture, edition, false, 0};
}

TEST(OSName, IsTruncatedToItsMaximumLength)
{
    OSInfo info = Info(5, 2, Server, X86);
    info.servicePack.assign(300, L'x');
    const std::wstring start = L"Microsoft Windows Server 2003, Standard Edition ";
    EXPECT_EQ(BuildDisplayName(info).text, start + std::wstring(255 - start.size(), L'x'));
}

TEST(OSName, IsEmptyForUnknownSystems)
{
    OSInfo info = Info(4, 0, Workstation, X86);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(BuildDisplayName(info).isBuilt);
    info.major = 5;
    info.platform = 1;
    EXPECT_FALSE(BuildDisplayName(info).isBuilt);
    const std::string line = "This sample does not support this version of Windows.\n";
    info.hasVersion = false;
    EXPECT_FALSE(BuildDisplayName(info).isBuilt);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), line + line);
}

TEST(MachineIdentifier, IsKeptOnlyWhereItsKeyExists)
{
    const std::wregex form(L"[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}");
    const test::ScratchKey user(HKEY_CURRENT_USER);
    const std::wstring first = L"" + GetMachineIdentifier();
    EXPECT_TRUE(std::regex_match(first, form)) << first.c_str();
    EXPECT_NE(GetMachineIdentifier(), first);
    EXPECT_EQ(user.Dump(), L"[]\n");

    const std::wstring key = L"software\\Keldane";
    user.Make(key);
    const std::wstring kept = L"" + GetMachineIdentifier();
    EXPECT_EQ(user.Dump(key), L"[]\nRun={" + kept + L"}\n");
    EXPECT_EQ(GetMachineIdentifier(), kept);

    user.Write(key, L"Run", L"");
    EXPECT_TRUE(std::regex_match(GetMachineIdentifier(), form));
    user.Write(key, L"Run", L"{a}b}{");
    EXPECT_EQ(GetMachineIdentifier(), L"ab");
    user.Write(key, L"Run", REG_SZ, L"{xyz}", 5 * sizeof(wchar_t));  // no terminating zero
    EXPECT_EQ(GetMachineIdentifier(), L"xyz");
    user.Write(key, L"Run", REG_DWORD, L"7", sizeof(DWORD));
    EXPECT_TRUE(std::regex_match(GetMachineIdentifier(), form));
    for (const std::size_t length : {32767U, 32768U}) {  // the second is too long to be read, so it is kept
        const std::wstring own(length, L'x');
        user.Write(key, L"Run", own);
        EXPECT_EQ(GetMachineIdentifier() == own, length == 32767U);
        EXPECT_EQ(ReadValue(OpenKey(user.Key(), key.c_str(), KEY_READ).get(), L"Run")->Text(), own);
    }
}

TEST(OS, KeepsTheOtherFactsWhenAFunctionIsMissing)
{
    const OSFunctions whole = OSFunctions::OfSystem();
    OSFunctions none = whole;
    none.getVersion = [](OSVERSIONINFOEXW&) { return SetLastError(5), FALSE; };
    none.isWow64Process = [](HANDLE, BOOL* isEmulated) { return *isEmulated = TRUE, FALSE; };
    test::TestSession session;
    EXPECT_TRUE(OS().Detect(none));
    EXPECT_EQ(session.Texts({71060, 71072, 71309, 71363, 71388, 71264}),
              L"(none)|(none)|(none)|(none)|(none)|No|");
    EXPECT_EQ(session.Why(71060), L"not readable: GetVersionExW, error 5");
    EXPECT_EQ(session.Text(71207).size(), 36U);
    none.isWow64Process.clear();
    none.isWow64Process2.clear();
    none.getNativeSystemInfo.clear();
    EXPECT_TRUE(OS().Detect(none));
    EXPECT_EQ(session.Texts({71264, 73405}), L"No|x64|");

    OSFunctions emulating = whole;
    emulating.isWow64Process = [](HANDLE, BOOL* isEmulated) { return *isEmulated = TRUE; };
    emulating.getNativeSystemInfo = [](SYSTEM_INFO& system) { system.wProcessorArchitecture = 0; };
    emulating.getProductInfo.clear();
    emulating.getUserDefaultLCID = [] { return LCID{0x0C07}; };  // not the system's
    EXPECT_TRUE(OS().Detect(emulating));
    EXPECT_EQ(session.Texts({71264, 71361}), L"Yes|No|");
    EXPECT_EQ(session.Text(71388), L"0C07");
}

TEST(OSName, NamesTheReleaseAndItsEdition)
{
    const std::vector<unsigned> itanium = {71264, 71360, 71263}, x64 = {71264, 71361, 71263};
    const std::tuple<OSInfo, const wchar_t*, std::vector<unsigned>> rows[] = {
        {Info(6, 1, Workstation, Arm, 0, 5), L"Windows 7  (build 1)", {71350}},
        {Info(6, 1, Controller, X86, 0, 7),
         L"Windows Server 2008 R2 Standard Edition (build 1), 32-bit",
         {71466}},
        {Info(6, 0, Server, X86, 0, 2), L"Windows Server 2008 Home Basic Edition (build 1), 32-bit", {71465}},
        {Info(6, 2, Workstation, X64, 0, 4), L"Enterprise Edition (build 1), 64-bit", {71264, 71361}},
        {Info(10, 0, Workstation, X64, 0, 1), L" (build 1), 64-bit", {71264, 71361}},
        {Info(5, 3, Workstation, X86), L" (build 1)", {}},
        {Info(5, 2, Workstation, X86), L"Windows Server 2003,  (build 1)", {71263}},
        {Info(5, 2, Workstation, X64),
         L"Windows XP Professional x64 Edition (build 1)",
         {71264, 71361, 71276}},
        {Info(5, 2, Controller, Itanium), L"Windows Server 2003,  (build 1)", itanium},
        {Info(5, 2, Server, X86, 0x2000), L"Windows Storage Server 2003Standard Edition (build 1)", {71263}},
        {Info(5, 2, Server, X86, 0x4080), L"Windows Server 2003, Compute Cluster Edition (build 1)", {71263}},
        {Info(5, 2, Server, X86, 0x480), L"Windows Server 2003, Datacenter Edition (build 1)", {71263}},
        {Info(5, 2, Server, X86, 0x402), L"Windows Server 2003, Enterprise Edition (build 1)", {71263}},
        {Info(5, 2, Server, X86, 0x400), L"Windows Server 2003, Web Edition (build 1)", {71263}},
        {Info(5, 2, Server, X86), L"Windows Server 2003, Standard Edition (build 1)", {71263}},
        {Info(5, 2, Server, Itanium, 0x82),
         L"Windows Server 2003, Datacenter Edition for Itanium-based Systems (build 1)", itanium},
        {Info(5, 2, Server, Itanium, 0x2),
         L"Windows Server 2003, Enterprise Edition for Itanium-based Systems (build 1)", itanium},
        {Info(5, 2, Server, X64, 0x82), L"Windows Server 2003, Datacenter x64 Edition (build 1)", x64},
        {Info(5, 2, Server, X64, 0x2), L"Windows Server 2003, Enterprise x64 Edition (build 1)", x64},
        {Info(5, 2, Server, X64), L"Windows Server 2003, Standard x64 Edition (build 1)", x64},
        {Info(5, 1, Workstation, X86), L"Windows XP Professional (build 1)", {71276}},
        {Info(5, 0, Workstation, X86, 0x80), L"Windows 2000 Professional (build 1)", {71262}},
        {Info(5, 0, Server, X86, 0x82), L"Windows 2000 Datacenter Server (build 1)", {71262}},
        {Info(5, 0, Server, X86, 0x2), L"Windows 2000 Advanced Server (build 1)", {71262}},
        {Info(5, 0, Controller, X86), L"Windows 2000 Server (build 1)", {71262}},
    };
    for (const auto& [info, text, flags] : rows) {
        const OSName name = BuildDisplayName(info);
        EXPECT_EQ(name.text, std::wstring(L"Microsoft ") + text);
        EXPECT_EQ(name.flags, flags) << text;
    }
}

TEST(OSName, HasTheNumberedEdition)
{
    constexpr std::tuple<DWORD, const wchar_t*, unsigned> Rows[] = {
        {0x01, L"Ultimate Edition", 71275},
        {0x02, L"Home Basic Edition", 71273},
        {0x03, L"Home Premium Edition", 71274},
        {0x04, L"Enterprise Edition", 71272},
        {0x06, L"Business Edition", 71271},
        {0x07, L"Standard Edition", 0},
        {0x08, L"Datacenter Edition", 0},
        {0x09, L"Small Business Server", 0},
        {0x0A, L"Enterprise Edition", 0},
        {0x0B, L"Starter Edition", 0},
        {0x0C, L"Datacenter Edition (core installation)", 0},
        {0x0D, L"Standard Edition (core installation)", 0},
        {0x0E, L"Enterprise Edition (core installation)", 0},
        {0x0F, L"Enterprise Edition for Itanium-based Systems", 0},
        {0x11, L"Web Server Edition", 0},
        {0x12, L"Cluster Server Edition", 0},
        {0x19, L"Small Business Server Premium Edition", 0},
    };
    for (const auto& [number, text, flag] : Rows) {
        const OSName name = BuildDisplayName(Info(6, 0, Workstation, X86, 0, number));
        EXPECT_TRUE(name.text.starts_with(L"Microsoft Windows Vista " + std::wstring(text) + L" ("))
            << name.text;
        EXPECT_EQ(name.flags, flag != 0 ? std::vector({71251U, flag}) : std::vector({71251U})) << name.text;
    }
}

TEST(Windows, HasTheNameOfItsRelease)
{
    const std::tuple<DWORD, DWORD, DWORD, ProductType, const wchar_t*> rows[] = {
        {10, 0, 18363, Server, L"Windows Server"},       {10, 0, 21999, Workstation, L"Windows 10"},
        {10, 0, 22000, Workstation, L"Windows 11"},      {10, 0, 26100, Server, L"Windows Server 2025"},
        {10, 0, 17763, Server, L"Windows Server 2019"},  {6, 3, 9600, Workstation, L"Windows 8.1"},
        {6, 3, 9600, Server, L"Windows Server 2012 R2"}, {6, 1, 7601, Workstation, L"Windows 7"},
    };
    for (const auto& [major, minor, build, type, name] : rows) {
        EXPECT_EQ(NameRelease({0, major, minor, build, 0, L"", 0, 0, 0, type, 0}), name) << build;
    }
}

TEST(OS, StoresItsFlagsFirstAndAnErrorLeavesThem)
{
    OSFunctions throwing = OSFunctions::OfSystem();
    throwing.getVersion = [](OSVERSIONINFOEXW&) -> BOOL { throw 1; };
    test::TestSession session;
    const test::LogCapture log(1);
    EXPECT_TRUE(OS().Detect(throwing));
    EXPECT_EQ(log.Lines(), std::vector<std::wstring>{L"ERR Error in OS detection."});
    EXPECT_THAT(session.Numbers(),
                testing::ElementsAre(71262, 71263, 71264, 71361, 71360, 71265, 71266, 71310, 71267, 71270,
                                     71251, 71271, 71272, 71273, 71274, 71275, 71276, 71350, 71465, 71466));
}

}  // namespace
}  // namespace kel
