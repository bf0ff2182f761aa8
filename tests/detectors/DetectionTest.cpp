#include <gmock/gmock.h>

#include "detectors/Components.h"
#include "detectors/CpuRules.h"
#include "probes/cpu/CpuTopology.h"
#include "probes/cpu/SystemCpu.h"
#include "support/LogCapture.h"
#include "support/StorageAnswers.h"
#include "support/TestSession.h"

namespace kel {
namespace {

using Lines = std::vector<std::wstring>;

struct BrokenSession : test::TestSession {
    SystemValues& Values() override { throw 1; }
};

TEST(Detectors, LogOneLineEachWhenTheyFailAndTheNextRuns)
{
    BrokenSession session;
    session.wanted.Assign(L"71069", L"", true);
    const test::LogCapture log(1);
    Components().DetectAll();
    Components().DetectAll();  // once per process, for any caller
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

struct SlowDetector : Component {
    using Component::WarnIfSlow;

    bool Detect() override
    {
        return Guarded(L"kel::Slow::Detect", nullptr, [] { Sleep(5100); });
    }
};

TEST(Detectors, WarnWhenTheyTakeOverFiveSeconds)
{
    const test::LogCapture log(2);
    SlowDetector::WarnIfSlow(L"healthy", 5000);
    SlowDetector::WarnIfSlow(L"late", 5001);
    EXPECT_EQ(log.Lines(), Lines{L"WARN late took 5001 milliseconds"});
    SlowDetector().Detect();
    EXPECT_THAT(log.Lines().back(), testing::StartsWith(L"WARN kel::Slow::Detect took 5"));
}

TEST(CpuRules, DescribeWhatIsMeasured)
{
    EXPECT_FALSE(DescribeProcessors(1, 0).multiProcessor);
    EXPECT_TRUE(DescribeProcessors(2, 0).multiProcessor);
    EXPECT_EQ(DescribeProcessors(64, 2345.9F).speed.Hertz(), 2345000000U);
}

TEST(SystemCpu, DoesNotTakeTwoGigabytesForATopology)
{
    int calls = 0;
    CpuFunctions functions;
    functions.getTopology = [&calls](auto, auto*, DWORD* size) -> BOOL {
        ++calls;
        *size = 0x7FFFFFFF;
        return FALSE;
    };
    functions.firmwareVirtualizes = [] { return std::optional<bool>(); };
    CpuInfo info;
    GetTopology(functions, info);
    EXPECT_EQ(calls, 1);
}

TEST(CpuTopology, CountsWhatItsRecordsHold)
{
    using test::Little;
    const auto record = [](int kind, const std::string& rest) {
        return Little(kind, 4) + Little(8 + rest.size(), 4) + rest;
    };
    const std::string junk(20, '\x7F'), mask(8, '\0');
    const auto core = [&](int efficiency, const std::string& masks) {
        const std::size_t groups = masks.size() / 16;
        return record(RelationProcessorCore,
                      Little(0, 1) + Little(efficiency, 1) + junk + Little(groups, 2) + masks);
    };
    const std::string records =
        core(0, Little(3, 8) + mask + Little(1, 8) + mask) + core(1, Little(3, 8) + mask) +
        record(RelationProcessorCore, "") + record(RelationProcessorPackage, junk) +
        record(RelationCache, Little(0, 4) + Little(512 << 10, 4)) + record(RelationCache, "") +
        record(RelationNumaNode, junk) + core(0, mask + mask).substr(0, 40);  // cut
    const CpuTopology found = DecodeTopology(std::as_bytes(std::span(records)));
    EXPECT_EQ(found.cores, 3);
    EXPECT_EQ(found.threads, 5);
    EXPECT_EQ(found.packages, 1);
    EXPECT_EQ(found.efficientCores, 2);
    EXPECT_EQ(found.largestCache.value_or(Size()).Bytes(), 512U << 10);
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
        {Amd, L"AMD 20000", L"1 GHz", L"2000000000Hz"},
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
