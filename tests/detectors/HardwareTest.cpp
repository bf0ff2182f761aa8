#include <gtest/gtest.h>

#include <algorithm>

#include "detectors/Bios.h"
#include "detectors/CPU.h"
#include "detectors/Chassis.h"
#include "detectors/Components.h"
#include "detectors/CpuRules.h"
#include "detectors/MotherBoard.h"
#include "detectors/Ram.h"
#include "support/FakeWmi.h"
#include "support/LogCapture.h"
#include "support/ScratchKey.h"
#include "support/TestSession.h"

namespace kel {
namespace {

TEST(CpuRules, TidyTheNameAndRateTheSpeed)
{
    const struct {
        const wchar_t *name, *speed;
        bool isAmd, multiProcessor;
        const wchar_t *tidyName, *ratedSpeed;
    } rows[] = {
        {L"\t AMD   Athlon(tm)    3000+ ", L"1800 MHz", true, false, L"AMD Athlon(tm) 3000+",
         L"3000000000Hz"},
        {L"AMD Athlon 3000+", L"1800 MHz", true, true, L"AMD Athlon 3000+", L"4500000000Hz"},
        {L"AMD Athlon 3000+", L"3000 MHz", true, false, L"AMD Athlon 3000+", L""},
        {L"AMD 64 2800+ 3200", L"1 GHz", true, false, L"AMD 64 2800+ 3200", L"3200000000Hz"},
        {L"3000", L"1 GHz", true, false, L"3000", L""},  // the first character is not looked at
        {L"AMD 999", L"1 Hz", true, false, L"AMD 999", L""},
        {L"Chip 3000", L"1 GHz", false, false, L"Chip 3000", L""},
        {L"Chip 3000", L"1 GHz", false, true, L"Chip 3000", L"1500000000Hz"},
        {L"", L"", true, true, L"", L""},
    };
    for (const auto& row : rows) {
        CpuInfo info;
        info.name = row.name;
        info.speed.Initialize(row.speed);
        info.isAmd = row.isAmd;
        info.multiProcessor = row.multiProcessor;
        FinishCpuInfo(info);
        EXPECT_EQ(info.name, row.tidyName);
        EXPECT_EQ(info.ratedSpeed, row.ratedSpeed) << row.name;
    }
}

TEST(CpuRules, MergeKeepsTheFirstValueButTheLastRating)
{
    CpuInfo first, second, merged;
    first.vendor = L"first";
    first.ratedSpeed = L"lost";
    second.vendor = second.name = second.family = second.caption = L"second";
    second.speed.Initialize(L"2 GHz");
    second.isIntel = second.cacheDescriptor40 = true;
    MergeCpuInfo(merged, first);
    EXPECT_EQ(merged.ratedSpeed, L"lost");
    MergeCpuInfo(merged, second);
    first.speed.Initialize(L"1 GHz");
    MergeCpuInfo(merged, first);
    EXPECT_EQ(merged.vendor + merged.name + merged.family + merged.caption, L"firstsecondsecondsecond");
    EXPECT_EQ(merged.speed.Hertz(), 2000000000U);
    EXPECT_TRUE(merged.isIntel && merged.cacheDescriptor40 && !merged.isAmd);
    EXPECT_EQ(merged.ratedSpeed, L"lost");
    MergeCpuInfo(merged, second);
    EXPECT_EQ(merged.ratedSpeed, L"");
}

TEST(Processor, IsStoredInItsOrder)
{
    test::FakeWmiData data;
    data.objects[L"SELECT * FROM Win32_Processor"] = {
        {{L"Name", {L"from WMI"}}, {L"MaxClockSpeed", {2400L, CIM_UINT32}}}};
    const test::FakeWmi fake(data);
    test::ScratchKey machine;
    machine.StandFor(HKEY_LOCAL_MACHINE);
    machine.Write(L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", L"ProcessorNameString",
                  L" from  registry ");
    test::TestSession session;
    EXPECT_TRUE(CPU().Detect());
    EXPECT_EQ(session.Text(71061), L"from registry");
    EXPECT_EQ(session.Text(71062), L"2.4 GHz");
    EXPECT_EQ(session.Text(71386).size(), 16U);
    EXPECT_EQ(session.Text(71386).substr(10), session.Text(71404));
    EXPECT_EQ(session.Text(71257), std::stoi(session.Text(71254)) > 1 ? L"Yes" : L"No");
    std::vector<unsigned> order;
    for (const SystemValue& value : session.values)
        order.push_back(value.ID().Group().Number());
    std::vector<unsigned> expected = {71061, 71254, 71062, 71296, 71385, 71390, 71391, 71389, 71386, 71404,
                                      71355, 71398, 71392, 71257, 71256, 71252, 71253, 71399, 71393};
    if (session.Text(71256) == L"Yes") {  // an Intel processor's flag is stored before all others, too
        std::erase(expected, 71256U);
        expected.insert(expected.begin(), 71256U);
    }
    EXPECT_EQ(order, expected);
}

TEST(Firmware, TakesVersionAndDateFromTheRegistryAndTheRestFromWmi)
{
    test::FakeWmiData data;
    data.objects[L"SELECT * FROM Win32_BIOS"] = {
        {{L"name", {L"N"}}, {L"Manufacturer", {L"M"}}, {L"SMBIOSBIOSVersion", {L"wmi"}}}};
    data.objects[L"SELECT * FROM Win32_BaseBoard"] = {{{L"Product", {L"P"}}, {L"Version", {L"aA wmi"}}}};
    const test::FakeWmi fake(data);
    test::ScratchKey machine;
    machine.StandFor(HKEY_LOCAL_MACHINE);
    const std::wstring bios = L"HARDWARE\\DESCRIPTION\\System\\BIOS";
    machine.Write(bios, L"BIOSVendor", L"V");
    test::TestSession session;
    Bios().Detect();
    MotherBoard().Detect();
    EXPECT_EQ(session.Text(71073) + L"|" + session.Text(71383) + L"|" + session.Text(71294) + L"|" +
                  session.Text(71074),
              L"N||M|wmi");
    EXPECT_EQ(session.Text(71171) + L"|" + session.Text(71170) + L"|" + session.Text(71356) + L"|" +
                  session.Text(71437),
              L"|P|aA wmi|Yes");
    machine.Write(bios, L"BIOSVersion", L"1");
    machine.Write(bios, L"BaseBoardVersion", L"x aa");
    Bios().Detect();
    MotherBoard().Detect();
    EXPECT_EQ(session.Text(71074) + L"|" + session.Text(71356) + L"|" + session.Text(71437), L"V 1|x aa|No");
}

BOOL WINAPI FixedStatus(MEMORYSTATUSEX* status)
{
    EXPECT_EQ(status->dwLength, 64U);
    status->ullTotalPhys = 1ULL << 33;
    status->ullTotalVirtual = 1ULL << 47;
    status->ullAvailPhys = 3;
    return TRUE;
}

TEST(Memory, ComesFromTheNewerFunctionOrTheOlder)
{
    const MemoryInfo newer = ReadMemory(&FixedStatus);
    EXPECT_EQ(newer.totalPhysical.Bytes(), 1ULL << 33);
    EXPECT_EQ(newer.totalVirtual.Bytes(), 1ULL << 47);
    EXPECT_EQ(newer.availablePhysical.Bytes(), 3U);
    const MemoryInfo older = ReadMemory(nullptr);
    EXPECT_EQ(older.totalPhysical.Bytes(), ReadMemory(&GlobalMemoryStatusEx).totalPhysical.Bytes());
    test::TestSession session;
    EXPECT_TRUE(Ram().Detect());
    EXPECT_EQ(session.Text(71063), older.totalPhysical.ToString());
    EXPECT_EQ(session.Text(71174) + session.Text(71175), L"");
}

template <bool Succeeds, bool Present, bool ShortTerm>
BOOLEAN WINAPI Capabilities(SYSTEM_POWER_CAPABILITIES* capabilities)
{
    capabilities->SystemBatteriesPresent = Present;
    capabilities->BatteriesAreShortTerm = ShortTerm;
    return Succeeds;
}

TEST(Chassis, IsPortableOnALongTermBatteryOnly)
{
    EXPECT_TRUE(HasLongTermBattery(&Capabilities<true, true, false>));
    EXPECT_FALSE(HasLongTermBattery(&Capabilities<true, true, true>));
    EXPECT_FALSE(HasLongTermBattery(&Capabilities<true, false, false>));
    EXPECT_FALSE(HasLongTermBattery(&Capabilities<false, true, false>));
    EXPECT_FALSE(HasLongTermBattery(nullptr));
}

class Failing : public Component {
public:
    bool Detect() override
    {
        return Guarded(L"kel::Failing::Detect", L"Error in the middle.", [] {
            AddValue(1, std::wstring(L"kept"));
            throw 1;
        });
    }
};

TEST(Components, RunOnceInTheirOrderAndSurviveAFailure)
{
    test::TestSession session;
    test::LogCapture log(4);
    EXPECT_TRUE(Failing().Detect());
    EXPECT_EQ(session.Text(1), L"kept");
    EXPECT_EQ(log.Lines(), (std::vector<std::wstring>{
                               L"MARK Entering: kel::Failing::Detect", L"TRACE Adding value: kept to 1",
                               L"ERR Error in the middle.", L"MARK Exiting: kel::Failing::Detect"}));

    Components components;
    components.DetectAll();
    Components().DetectAll();
    std::vector<std::wstring> order;
    for (const std::wstring& line : log.Lines()) {
        if (line.starts_with(L"MARK Entering: kel::") && line.ends_with(L"::Detect"))
            order.push_back(line.substr(20, line.size() - 28));
    }
    EXPECT_EQ(order, (std::vector<std::wstring>{
                         L"Failing",      L"CPU",         L"GPU",           L"Bios",     L"CDRom",
                         L"Chassis",      L"DirectX",     L"DVD",           L"Graphics", L"HardDrive",
                         L"LogicalDrive", L"MotherBoard", L"NetworkDevice", L"OS",       L"Ram",
                         L"Sound",        L"Software",    L"Browser",       L"Monitor",  L"Applications",
                         L"SCSI"}));
}

}  // namespace
}  // namespace kel
