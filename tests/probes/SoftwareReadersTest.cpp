#include <gmock/gmock.h>

#include <algorithm>

#include "probes/Command.h"
#include "probes/DotNet.h"
#include "probes/FileVersion.h"
#include "probes/VersionText.h"
#include "support/PlantedSoftware.h"
#include "values/TextMatch.h"

namespace kel {
namespace {

TEST(FileVersion, IsReadFromWholeRecordsOnly)
{
    const std::vector<BYTE> record = test::MakeVersionRecord(L"120.0.6099.65535");
    for (std::size_t length = 0; length <= record.size(); ++length)
        EXPECT_EQ(ReadFixedVersion(std::span(record).first(length)),
                  length == record.size() ? L"120.0.6099.65535" : L"");
    std::vector<BYTE> longer = record;
    longer.resize(5000, 0xAA);  // the texts
    EXPECT_EQ(ReadFixedVersion(longer), L"120.0.6099.65535");
    EXPECT_EQ(ReadFixedVersion(test::MakeVersionRecord(L"0.0.0.0")), L"");
    EXPECT_EQ(ReadFixedVersion(test::MakeVersionRecord(L"0.0.0.1")), L"0.0.0.1");
    for (std::size_t place = 2; place < 44; ++place) {
        std::vector<BYTE> other = record;
        other[place] ^= 0x41;
        const bool isOpen =
            place == 4 || place == 5 || place == 38 || place == 39;  // kind of the texts, filler
        EXPECT_EQ(ReadFixedVersion(other), isOpen ? L"120.0.6099.65535" : L"") << place;
    }
}

TEST(Commands, NameTheirProgram)
{
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {LR"("C:\Program Files\Mozilla Firefox\firefox.exe" -osint -url "%1")",
         LR"(C:\Program Files\Mozilla Firefox\firefox.exe)"},
        {LR"(C:\Program Files\Opera\Launcher.exe -noautoupdate -- "%1")",
         LR"(C:\Program Files\Opera\Launcher.exe)"},
        {LR"(%ProgramFiles%\Internet Explorer\iexplore.exe -nohome)",
         LR"(%ProgramFiles%\Internet Explorer\iexplore.exe)"},
        {LR"( 	"%LOCALAPPDATA%\a b.EXE" )", LR"(%LOCALAPPDATA%\a b.EXE)"},
        {LR"(C:\a.exe files\b.exe,0)", LR"(C:\a.exe|C:\a.exe files\b.exe)"},
        {LR"("C:\a\b.exe",-101)", LR"(C:\a\b.exe)"},
        {LR"("C:\a\b.exe)", LR"(C:\a\b.exe)"},
        {LR"("C:\a\b.exe"-x)", LR"(C:\a\b.exe)"},
        {LR"(MsiExec.exe /X{23170F69-40C1-2702-0920-000001000000})", L"MsiExec.exe"},
        {LR"(C:\a\b.exec)", L""},
        {LR"(C:\a\b.ico,0)", L""},
        {LR"("")", L""},
        {LR"(" ")", L""},
        {L"", L""},
        {L".exe .exe .exe .exe .exe .exe .exe .exe .exe .exe",
         L".exe|.exe .exe|.exe .exe .exe|.exe .exe .exe .exe|.exe .exe .exe .exe .exe|.exe .exe .exe .exe "
         L".exe "
         L".exe|.exe .exe .exe .exe .exe .exe .exe|.exe .exe .exe .exe .exe .exe .exe .exe"},
    };
    for (const auto& [command, expected] : rows) {
        std::wstring programs;
        for (const std::wstring& program : ProgramsOf(command))
            programs += (programs.empty() ? L"" : L"|") + program;
        EXPECT_EQ(programs, expected) << command;
    }
}

TEST(Paths, AreOfFilesOnDriveLettersOnly)
{
    for (const wchar_t* path : {L"C:\\a", L"d:\\Program Files (x86)\\a+b.exe", L"C:\\\u00FC\\a"})
        EXPECT_TRUE(IsPlainPath(path)) << path;
    for (const wchar_t* path : {L"", L"C:", L"C:\\", L"C:a.exe", L"\\\\server\\share\\a", L"\\\\?\\C:\\a",
                                L"\\\\.\\C:\\a", L"1:\\a", L"C:\\a:b", L"C:\\a?", L"C:\\*", L"C:\\a\tb",
                                L"C:\\a/b", L"a\\b.exe", L"%ProgramFiles%\\a"})
        EXPECT_FALSE(IsPlainPath(path)) << path;
    EXPECT_EQ(JoinPath(L"C:\\a\\", L"b\\c.exe"), L"C:\\a\\b\\c.exe");
    EXPECT_EQ(JoinPath(L"C:\\a\\b\\c", L"..\\..\\d"), L"C:\\a\\d");
    EXPECT_EQ(JoinPath(L"C:\\a\\b\\", L".."), L"C:\\a");
    EXPECT_EQ(JoinPath(L"C:", L"..\\..\\d"), L"\\d");
    EXPECT_TRUE(MatchesPattern(L"Google Chrome.AB", L"google chrome.*"));
    EXPECT_FALSE(MatchesPattern(L"Google Chrome Beta", L"Google Chrome.*"));
    EXPECT_FALSE(MatchesPattern(L"Zoom", L"Zoom *"));
}

TEST(Versions, AreReadFromTextsAndOrdered)
{
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {{L"5.9.7 (3931)", L"5.9.7"},
                                                              {L"2022.3.1415.932", L"2022.3.1415.932"},
                                                              {L"7", L"7"},
                                                              {L"1.", L"1"},
                                                              {L"1..2", L"1"},
                                                              {L"v14.38", L""},
                                                              {L"", L""},
                                                              {L".5", L""},
                                                              {L"9.0.0-preview", L"9.0.0"},
                                                              {L"123456789.1", L"123456789.1"},
                                                              {L"1.1234567890", L""}};
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(ReadDottedNumber(text), expected) << text;
    const wchar_t* ascending[] = {L"", L"0.1", L"8.0.450.14", L"8.0.3910.13", L"9", L"10.0.1", L"24.08.00.1"};
    for (std::size_t one = 0; one < std::size(ascending); ++one) {
        for (std::size_t other = 0; other < std::size(ascending); ++other)
            EXPECT_EQ(IsLowerVersion(ascending[one], ascending[other]), one < other) << one << other;
    }
    EXPECT_FALSE(IsLowerVersion(L"1.2", L"1.2.0.0") || IsLowerVersion(L"01.2", L"1.2"));
    const std::pair<const wchar_t*, const wchar_t*> packages[] = {
        {L"MSTeams_23320.3021.2567.4799_x64__8wekyb3d8bbwe", L"23320.3021.2567.4799"},
        {L"msteams_1.2.3.4_neutral_split.scale_8WEKYB3D8BBWE", L"1.2.3.4"},
        {L"MSTeamsX_1.2.3.4_x64__8wekyb3d8bbwe", L""},
        {L"MSTeams_1.2.3.4_x64__other", L""},
        {L"MSTeams_1.2.3_x64__8wekyb3d8bbwe", L""},
        {L"MSTeams_1.2.3.x_x64__8wekyb3d8bbwe", L""},
        {L"MSTeams_8wekyb3d8bbwe", L""},
        {L"____", L""},
        {L"", L""},
    };
    for (const auto& [name, expected] : packages)
        EXPECT_EQ(ReadPackageVersion(name, L"MSTeams_8wekyb3d8bbwe"), expected) << name;
    const std::pair<DWORD, const wchar_t*> releases[] = {{378388, L""},      {378389, L"4.5"},
                                                         {461814, L"4.7.2"}, {533319, L"4.8"},
                                                         {533320, L"4.8.1"}, {~0U, L"4.8.1"}};
    for (const auto& [release, expected] : releases)
        EXPECT_EQ(FrameworkOfRelease(release), expected) << release;
}

}  // namespace
}  // namespace kel
