#include "probes/WMI.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/FakeWmi.h"
#include "support/LogCapture.h"

namespace kel {
namespace {

constexpr const wchar_t* Processors = L"SELECT * FROM Win32_Processor";
constexpr const wchar_t* Drives = L"SELECT * FROM Win32_DiskDrive";
constexpr const wchar_t* Bioses = L"SELECT * FROM Win32_BIOS";
constexpr const wchar_t* Sounds = L"SELECT * FROM Win32_SoundDevice";
constexpr const wchar_t* Boards = L"SELECT * FROM Win32_BaseBoard";
constexpr const wchar_t* CDRoms = L"SELECT * FROM Win32_CDROMDrive";

test::FakeProperty Null()
{
    test::FakeProperty property;
    property.value.ChangeType(VT_NULL);
    return property;
}

/// A value that has no text and no number.
test::FakeProperty Array()
{
    test::FakeProperty property;
    property.value.vt = VT_ARRAY | VT_I4;
    property.value.parray = SafeArrayCreateVector(VT_I4, 0, 1);
    return property;
}

TEST(WMI, FillsEachRecordFromItsProperties)
{
    test::FakeWmiData data;
    data.objects[Processors] = {{{L"Name", {L"Chip"}},
                                 {L"Manufacturer", {L"Maker"}},
                                 {L"MaxClockSpeed", {2400L, CIM_UINT32}},
                                 {L"Caption", {L"Model 5"}}},
                                {{L"Name", {L"second"}}}};
    data.objects[Bioses] = {{{L"Version", {L"not kept"}},
                             {L"name", {L"Bios"}},
                             {L"Manufacturer", {L"Maker"}},
                             {L"SMBIOSBIOSVersion", {L"1.2"}}}};
    data.objects[Sounds] = {{{L"Name", {L"Sound"}}, {L"DeviceID", {L"HDAUDIO"}}}, {{L"Name", {L"second"}}}};
    data.objects[Boards] = {{{L"Manufacturer", {L"A"}}, {L"Product", {L"P"}}, {L"Version", {L"V"}}},
                            {{L"Manufacturer", {L"B"}}, {L"Product", Null()}}};
    data.objects[CDRoms] = {
        {{L"Name", {L"CD"}}, {L"PNPDeviceID", {L"IDE"}}, {L"Drive", {L"D:"}}, {L"MediaType", {L"CD-ROM"}}}};
    {
        const test::FakeWmi fake(data);
        WMI wmi;
        CpuInfo cpu;
        EXPECT_TRUE(wmi.GetCpuInfo(cpu));
        EXPECT_EQ(cpu.name + L"|" + cpu.vendor + L"|" + cpu.caption, L"Chip|Maker|Model 5");
        EXPECT_EQ(cpu.speed.Hertz(), 2400000000U);
        BiosInfo bios;
        EXPECT_TRUE(wmi.GetBiosValues(bios));
        EXPECT_EQ(bios.name + L"|" + bios.manufacturer + L"|" + bios.version + L"|" + bios.date,
                  L"Bios|Maker|1.2|");
        WmiSoundInfo sound;
        EXPECT_TRUE(wmi.GetSoundValues(sound));
        EXPECT_EQ(sound.deviceName + L"|" + sound.deviceId, L"Sound|HDAUDIO");
        BoardInfo board;
        EXPECT_TRUE(wmi.GetMotherboardValues(board));
        EXPECT_EQ(board.manufacturer + L"|" + board.product + L"|" + board.version, L"B||V");
        std::vector<WmiCDRomInfo> drives;
        EXPECT_TRUE(wmi.GetCDRomValues(drives));
        ASSERT_EQ(drives.size(), 1U);
        EXPECT_EQ(
            drives[0].name + L"|" + drives[0].deviceId + L"|" + drives[0].drive + L"|" + drives[0].mediaType,
            L"CD|IDE|D:|CD-ROM");
        EXPECT_EQ(data.counts, (std::vector<ULONG>{1, 1, 1, 200, 1}));
    }
    EXPECT_EQ(data.living, 0);
}

TEST(WMI, ReadsTheFirstTwoHundredDrives)
{
    for (const std::size_t count : {0U, 1U, 200U, 201U}) {
        test::FakeWmiData data;
        for (std::size_t i = 0; i < count; ++i)
            data.objects[Drives].push_back({{L"Model", {L"Disk"}},
                                            {L"Name", {L"\\\\.\\DISK"}},
                                            {L"Index", {static_cast<long>(i), CIM_SINT32}}});
        const test::FakeWmi fake(data);
        std::vector<WmiHardDriveInfo> drives;
        EXPECT_TRUE(WMI().GetHardDriveValues(drives));
        ASSERT_EQ(drives.size(), std::min<std::size_t>(count, 200));
        if (count > 0) {
            EXPECT_EQ(drives.back().index, static_cast<int>(drives.size()) - 1);
            EXPECT_EQ(drives.back().model + drives.back().deviceName, L"Disk\\\\.\\DISK");
        }
        EXPECT_EQ(data.counts.size(), 1U);
    }
}

/// The lines at levels 1 and 2 that all six queries write, and what they return, "1" for true.
std::pair<std::vector<std::wstring>, std::string> AskAll(WMI& wmi)
{
    const test::LogCapture log(1);
    CpuInfo cpu;
    std::vector<WmiHardDriveInfo> drives;
    BiosInfo bios;
    WmiSoundInfo sound;
    BoardInfo board;
    std::vector<WmiCDRomInfo> cdroms;
    std::string results;
    for (const bool result :
         {wmi.GetCpuInfo(cpu), wmi.GetHardDriveValues(drives), wmi.GetBiosValues(bios),
          wmi.GetSoundValues(sound), wmi.GetMotherboardValues(board), wmi.GetCDRomValues(cdroms)})
        results += result ? '1' : '0';
    return {log.Lines(), results};
}

TEST(WMI, AnswersFalseWhenItCannotConnect)
{
    test::FakeWmiData refusing;
    refusing.connect = E_ACCESSDENIED;
    test::FakeWmiData blanketless;
    blanketless.refusesBlanket = true;
    for (test::FakeWmiData* data : {&refusing, &blanketless}) {
        const test::FakeWmi fake(*data);
        const test::LogCapture log(3);
        WMI wmi;
        EXPECT_EQ(log.Lines(), std::vector<std::wstring>{L"TRACE WMI init failure."});
        EXPECT_EQ(AskAll(wmi).second, "000000");
        EXPECT_TRUE(data->queries.empty());
        EXPECT_EQ(data->living, 1);  // the factory alone
    }
    WMI withoutCom;  // no apartment
    EXPECT_EQ(AskAll(withoutCom).second, "000000");
}

TEST(WMI, KeepsWhatItHasWhenAQueryFailsOrAValueCannotBeConverted)
{
    test::FakeWmiData failing;
    failing.query = E_INVALIDARG;
    test::FakeWmiData none;
    for (test::FakeWmiData* data : {&failing, &none}) {
        const test::FakeWmi fake(*data);
        WMI wmi;
        EXPECT_EQ(AskAll(wmi), (std::pair<std::vector<std::wstring>, std::string>{{}, "110000"}));
        EXPECT_EQ(data->queries,
                  (std::vector<std::wstring>{Processors, Drives, Bioses, Sounds, Boards, CDRoms}));
    }

    test::FakeWmiData odd;
    odd.objects[Processors] = {
        {{L"Name", {L"kept"}}, {L"MaxClockSpeed", {L"fast"}}, {L"Caption", {L"never reached"}}}};
    odd.objects[Drives] = {{{L"Model", Array()}}};
    odd.objects[Bioses] = {{{L"name", {L"kept"}}, {L"Manufacturer", Array()}}};
    odd.objects[Sounds] = {{{L"Name", Array()}}};
    odd.objects[Boards] = {{{L"Product", Array()}}};
    odd.objects[CDRoms] = {{{L"Drive", Array()}}};
    const test::FakeWmi fake(odd);
    WMI wmi;
    EXPECT_EQ(AskAll(wmi),
              (std::pair<std::vector<std::wstring>, std::string>{
                  {L"ERR Error in WMI CPU detection.", L"ERR Error in WMI::GetMotherboardValues.",
                   L"ERR Error in WMI GetCDRomValues."},
                  "111111"}));
    CpuInfo cpu;
    wmi.GetCpuInfo(cpu);
    EXPECT_EQ(cpu.name + cpu.caption, L"kept");
    EXPECT_EQ(odd.living, 3);  // factory, locator and services
}

TEST(WMI, TellsFoundFromMissingProperties)
{
    test::FakeWmiData data;
    data.objects[Bioses] = {{{L"name", Null()}, {L"Manufacturer", {L"x", CIM_EMPTY}}}};
    const test::FakeWmi fake(data);
    WMI wmi;
    const test::LogCapture log(3);
    BiosInfo bios{L"old name", L"old version", L"", L"old maker"};
    EXPECT_TRUE(wmi.GetBiosValues(bios));
    EXPECT_EQ(bios.name + L"|" + bios.manufacturer + L"|" + bios.version, L"|old maker|old version");
    EXPECT_EQ(std::ranges::count(log.Lines(), L"TRACE WMI value: "), 4);
}

TEST(WMI, ReadsTheSystemsOwn)
{
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    {
        CpuInfo cpu;
        BiosInfo bios;
        WMI wmi;
        EXPECT_TRUE(wmi.GetCpuInfo(cpu));
        EXPECT_TRUE(wmi.GetBiosValues(bios));
        EXPECT_NE(cpu.name, L"");
        EXPECT_NE(bios.manufacturer, L"");
    }
    CoUninitialize();
}

}  // namespace
}  // namespace kel
