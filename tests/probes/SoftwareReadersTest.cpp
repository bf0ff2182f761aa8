#include <gtest/gtest.h>

#include "probes/software/Command.h"
#include "probes/software/DotNet.h"
#include "probes/software/FileVersion.h"
#include "probes/software/VersionText.h"
#include "support/Machines.h"
#include "support/PlantedSoftware.h"
#include "values/TextMatch.h"

namespace kel {
namespace {

using Lines = std::vector<std::wstring>;
using Row = std::pair<const wchar_t*, const wchar_t*>;

TEST(FileVersion, IsReadOnlyFromCompleteRecords)
{
    const std::vector<BYTE> record = test::MakeVersionRecord(L"120.0.6099.65535");
    for (std::size_t length = 0; length < record.size(); ++length)
        EXPECT_EQ(ReadFixedVersion(std::span(record).first(length)), L"") << length;
    std::vector<BYTE> longer = record;
    longer.resize(5000, 0xAA);  // the texts
    EXPECT_EQ(ReadFixedVersion(longer), L"120.0.6099.65535");
    EXPECT_EQ(ReadFixedVersion(test::MakeVersionRecord(L"0.0.0.0")), L"");
    EXPECT_EQ(ReadFixedVersion(test::MakeVersionRecord(L"0.0.0.1")), L"0.0.0.1");
    for (std::size_t place = 2; place < 44; ++place) {
        std::vector<BYTE> other = record;
        other[place] ^= 0x41;
        const bool isFree = place / 2 == 2 || place / 2 == 19;  // kind of the texts, filler
        EXPECT_EQ(ReadFixedVersion(other), isFree ? L"120.0.6099.65535" : L"") << place;
    }
}

TEST(Commands, NameTheirPrograms)
{
    const auto rows = test::ReadRows("commands.txt");
    ASSERT_GE(rows.size(), 13U);
    for (const std::wstring& row : rows) {
        const auto fields = test::Split(row, L'|');  // a command and the programs that it may mean
        EXPECT_EQ(ProgramsOf(fields[0]), Lines(fields.begin() + 1, fields.end())) << row;
    }
    EXPECT_TRUE(ProgramsOf(L"").empty());
    EXPECT_EQ(ProgramsOf(L".exe .exe .exe .exe .exe .exe .exe .exe .exe .exe").size(), 8U);
}

TEST(Paths, AreAcceptedOnlyOnDriveLetters)
{
    for (const wchar_t* path : {L"C:\\a", L"d:\\Program Files (x86)\\a+b.exe", L"C:\\\u00FC\\a"})
        EXPECT_TRUE(IsPlainPath(path)) << path;
    for (const wchar_t* path :
         {L"", L"C:", L"C:\\", L"C:a.exe", L"\\\\server\\share\\a", L"\\\\?\\C:\\a", L"1:\\a", L"C:\\a:b",
          L"C:\\a?", L"C:\\*", L"C:\\a\tb", L"C:\\a/b", L"a\\b.exe", L"%ProgramFiles%\\a"})
        EXPECT_FALSE(IsPlainPath(path)) << path;
    EXPECT_EQ(JoinPath(L"C:\\a\\", L"b\\c.exe"), L"C:\\a\\b\\c.exe");
    EXPECT_EQ(JoinPath(L"C:\\a\\b\\c", L"..\\..\\d"), L"C:\\a\\d");
    EXPECT_EQ(JoinPath(L"C:", L"..\\..\\d"), L"\\d");
    EXPECT_TRUE(MatchesPattern(L"Google Chrome.AB", L"google chrome.*"));
    EXPECT_FALSE(MatchesPattern(L"Google Chrome Beta", L"Google Chrome.*"));
    EXPECT_FALSE(MatchesPattern(L"Zoom", L"Zoom *"));
}

TEST(Versions, AreReadFromTextsAndOrdered)
{
    const Row numbers[] = {
        {L"5.9.7 (3931)", L"5.9.7"},      {L"7", L"7"},           {L"1..2", L"1"}, {L"v14.38", L""},
        {L"9.0.0-preview", L"9.0.0"},     {L"1.", L"1"},          {L"", L""},      {L".5", L""},
        {L"123456789.1", L"123456789.1"}, {L"1.1234567890", L""},
    };
    for (const auto& [text, expected] : numbers)
        EXPECT_EQ(ReadDottedNumber(text), expected) << text;
    const wchar_t* ascending[] = {L"", L"0.1", L"8.0.450.14", L"8.0.3910.13", L"9", L"10.0.1", L"24.08.00.1"};
    for (std::size_t one = 0; one < std::size(ascending); ++one) {
        for (std::size_t other = 0; other < std::size(ascending); ++other)
            EXPECT_EQ(IsLowerVersion(ascending[one], ascending[other]), one < other) << one << other;
    }
    EXPECT_FALSE(IsLowerVersion(L"1.2", L"1.2.0.0"));
    EXPECT_FALSE(IsLowerVersion(L"01.2", L"1.2"));
    const Row packages[] = {
        {L"msteams_1.2.3.4_neutral_split.scale_8WEKYB3D8BBWE", L"1.2.3.4"},
        {L"MSTeamsX_1.2.3.4_x64__8wekyb3d8bbwe", L""},
        {L"MSTeams_1.2.3.4_x64__other", L""},
        {L"MSTeams_1.2.3.x_x64__8wekyb3d8bbwe", L""},
        {L"____", L""},
    };
    for (const auto& [name, expected] : packages)
        EXPECT_EQ(ReadPackageVersion(name, L"MSTeams_8wekyb3d8bbwe"), expected) << name;
}

TEST(Frameworks, HaveTheVersionOfTheirRelease)
{
    const std::pair<DWORD, const wchar_t*> lowest[] = {
        {533320, L"4.8.1"}, {528040, L"4.8"},   {461808, L"4.7.2"}, {461308, L"4.7.1"},
        {460798, L"4.7"},   {394802, L"4.6.2"}, {394254, L"4.6.1"}, {393295, L"4.6"},
        {379893, L"4.5.2"}, {378675, L"4.5.1"}, {378389, L"4.5"},
    };
    for (const auto& [release, version] : lowest) {
        EXPECT_EQ(FrameworkOfRelease(release), version);
        EXPECT_NE(FrameworkOfRelease(release - 1), version);
    }
    EXPECT_EQ(FrameworkOfRelease(378388), L"");
}

}  // namespace
}  // namespace kel
