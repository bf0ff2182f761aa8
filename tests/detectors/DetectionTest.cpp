#include <gmock/gmock.h>

#include "detectors/Components.h"
#include "detectors/CpuRules.h"
#include "detectors/Detectors.h"
#include "probes/CPUID.h"
#include "probes/SystemCpu.h"
#include "support/FakeWmi.h"
#include "support/LogCapture.h"
#include "support/ScratchKey.h"
#include "support/TestSession.h"

namespace kel {
namespace {

using Lines = std::vector<std::wstring>;

struct BrokenSession : test::TestSession {
    SystemValues& Values() override { throw 1; }
};

TEST(Detectors, FailEachWithItsLineAndTheNextRuns)
{
    BrokenSession session;
    session.wanted.Assign(L"71069", L"");
    const test::LogCapture log(1);
    Components().DetectAll();
    Components().DetectAll();  // once per process, whoever asks
    EXPECT_EQ(
        log.Lines(),
        (Lines{L"ERR Error in CPU detection.", L"ERR Error in GPU::Detect", L"ERR Error in Bios detection.",
               L"ERR Error in CDRom detection.", L"ERR Error in Chassis detection.",
               L"ERR Error in DirectX detection.", L"ERR Error in DVD detection.",
               L"ERR Error in Graphics detection.", L"ERR Error in HardDrive detection.",
               L"ERR Error in LogicalDrive detection.", L"ERR Error in Motherboard detection.",
               L"ERR Error in NetworkDevice detection.", L"ERR Error in OS detection.",
               L"ERR Error in Ram detection.", L"ERR Error in Software detection.",
               L"ERR Error in Browser detection.", L"ERR Error in Monitor detection.",
               L"ERR Error with Applications detection.", L"ERR Error in SCSI detection."}));
}

/// A chip whose leaf 0 names its maker, with a signature, and the descriptor in leaf 2 if it has it.
CPUID Chip(const char (&maker)[13], std::uint32_t descriptors)
{
    return CPUID([&maker, descriptors](std::uint32_t leaf) -> CpuRegisters {
        const auto part = [&maker](int start) {
            std::uint32_t characters = 0;
            std::memcpy(&characters, maker + start, sizeof(characters));
            return characters;
        };
        if (leaf == 0)
            return {2, part(0), part(8), part(4)};
        return leaf == 1 ? CpuRegisters{0x000506E3, 0, 0, 0x0FEBFBFF} : CpuRegisters{1, 0, 0, descriptors};
    });
}

struct Processor : testing::Test {
    test::FakeWmiData data;
    const test::FakeWmi fake{data};
    const test::ScratchKey machine{HKEY_LOCAL_MACHINE};
    test::TestSession session;

    Processor()
    {
        data.objects[L"SELECT * FROM Win32_Processor"] = {
            {{L"Name", {L" w  mi "}}, {L"Manufacturer", {L"wmi"}}, {L"MaxClockSpeed", {1234L, CIM_UINT32}}}};
    }
};

TEST_F(Processor, StoresEachFieldInOrderFromTheFirstSourceThatHasItAndLogsItAll)
{
    const std::wstring key = L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";
    machine.Write(key, L"~MHz", L"1800");
    machine.Write(key, L"Platform ID", L"P");
    machine.Write(key, L"Update Signature", REG_BINARY, "\0\0\0\0\x0B", 5);
    machine.Write(L"SOFTWARE\\Intel\\Infinst", L"infver", L"8");
    machine.Write(L"SOFTWARE\\Intel\\Infinst", L"version", L"9");
    const test::LogCapture log;
    CPUID chip = Chip("GenuineIntel", 0x40);
    CPU().Detect(chip);
    const std::wstring count = session.Text(71254), isMulti = std::stoi(count) > 1 ? L"Yes" : L"No";
    const std::pair<unsigned, std::wstring> stored[] = {
        {71256, L"Yes"},  // before all others, too
        {71061, L"w mi"},   {71254, count},   {71062, L"1.8 GHz"},
        {71296, L"Intel"},  {71385, L"3"},    {71390, L"06"},
        {71391, L"5E"},     {71389, L"00"},   {71386, L"0FEBFBFF000506E3"},
        {71404, L"0506E3"}, {71355, L"P"},    {71398, L""},
        {71392, L"0B"},     {71257, isMulti}, {71256, L"Yes"},
        {71252, L"No"},     {71253, L"Yes"},  {71399, L""},
        {71393, L"9"},
    };
    Lines lines = {L"MARK Entering: kel::CPU::Detect",
                   L"MARK Entering: kel::WMI::Init",
                   L"TRACE WMI inited ok.",
                   L"MARK Exiting: kel::WMI::Init",
                   L"MARK Entering: kel::WMI::GetCpuInfo",
                   L"TRACE WMI value:  w  mi ",
                   L"TRACE WMI CPU:  w  mi ",
                   L"TRACE WMI value: wmi",
                   L"TRACE WMI value: 1234",
                   L"TRACE WMI value: ",
                   L"MARK Exiting: kel::WMI::GetCpuInfo",
                   L"DUMP cpuid 00000000: 00000002 756E6547 6C65746E 49656E69",
                   L"DUMP cpuid 00000002: 00000001 00000000 00000000 00000040",
                   L"DUMP cpuid 00000001: 000506E3 00000000 00000000 0FEBFBFF",
                   L"TRACE CPU Type: 0",
                   L"TRACE CPU ID: 0FEBFBFF000506E3",
                   L"TRACE CPU ID Short: 0506E3",
                   std::wstring(L"WARN Registry value is missing: ") + key + L" ProcessorNameString",
                   L"TRACE Name = L"};
    for (const auto& [id, text] : stored) {
        lines.push_back(L"TRACE Adding value: " + text + L" to " + std::to_wstring(id));
        if (lines.back() == L"TRACE Adding value: Yes to 71256" && lines.size() == 20)
            lines.insert(lines.end(), {L"TRACE CPU[0] name from WMI", L"TRACE CPU[0] speed from the registry",
                                       L"TRACE CPU[0] vendor from cpuid"});
    }
    lines.emplace_back(L"MARK Exiting: kel::CPU::Detect");
    EXPECT_EQ(log.Lines(), lines);
}

TEST_F(Processor, TakesWhatTheRegistryLacksFromWmiAndThenFromTheMeasurement)
{
    CPUID chip = Chip("AuthenticAMD", 0x4000000);
    CPU().Detect(chip);
    EXPECT_EQ(session.Texts({71062, 71252, 71253, 71256}), L"1.2 GHz|Yes|No|No|");
    CpuInfo measured;
    for (const auto& [count, isMulti] : {std::pair(1, false), {2, true}, {64, true}}) {
        measured = DescribeProcessors(static_cast<DWORD>(count), 2345.9F);
        EXPECT_EQ(measured.processorCount, std::to_wstring(count));
        EXPECT_EQ(measured.multiProcessor, isMulti);
    }
    EXPECT_EQ(measured.speed.Hertz(), 2345000000U);
}

TEST(CpuRules, TidyTheNameAndRateTheSpeed)
{
    enum { Other = 0, Amd = 1, Multi = 2 };  // Multi: a system of more than one processor
    const std::tuple<int, const wchar_t*, const wchar_t*, const wchar_t*> rows[] = {
        {Amd, L"AMD Athlon 3000+", L"1800 MHz", L"3000000000Hz"},
        {Amd | Multi, L"AMD Athlon 3000+", L"1800 MHz", L"4500000000Hz"},
        {Amd, L"AMD Athlon 3000+", L"3000 MHz", L""},
        {Amd, L"AMD 64 2800+ 3200", L"1 GHz", L"3200000000Hz"},
        {Amd, L"AMD 1000", L"999 MHz", L"1000000000Hz"},
        {Amd, L"AMD 12345", L"1 GHz", L"2345000000Hz"},  // four digits at a time: the last four win
        {Amd, L"3000", L"1 GHz", L""},
        {Amd, L"AMD 999", L"1 Hz", L""},
        {Other, L"Chip 3000", L"1 GHz", L""},
        {Multi, L"Chip 3000", L"1 GHz", L"1500000000Hz"},
    };
    CpuInfo info;
    for (const auto& [kind, name, speed, ratedSpeed] : rows) {
        info = CpuInfo();
        info.name = name;
        info.speed.Initialize(speed);
        info.isAmd = (kind & Amd) != 0;
        info.multiProcessor = (kind & Multi) != 0;
        FinishCpuInfo(info);
        EXPECT_EQ(info.ratedSpeed, ratedSpeed) << name;
    }
    info.name = L"\t AMD   Athlon(tm)    3000+ ";
    FinishCpuInfo(info);
    EXPECT_EQ(info.name, L"AMD Athlon(tm) 3000+");
}

}  // namespace
}  // namespace kel
