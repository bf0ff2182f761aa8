#include <gmock/gmock.h>

#include <algorithm>

#include "detectors/Detectors.h"
#include "probes/system/Battery.h"
#include "probes/system/Memory.h"
#include "service/BandwidthTest.h"
#include "support/LogCapture.h"
#include "support/TestSession.h"

namespace kel {
namespace {

TEST(Memory, ComesFromTheOlderFunctionWhereTheNewerIsMissing)
{
    EXPECT_FALSE(HasLongTermBattery(nullptr));
    const MemoryInfo older = ReadMemory({});
    test::TestSession session;
    const test::LogCapture log(2);
    EXPECT_TRUE(Ram().Detect());
    EXPECT_TRUE(Chassis().Detect());
    EXPECT_TRUE(log.Lines().empty());  // the system has the functions that are asked for
    EXPECT_EQ(session.Text(71063), older.totalPhysical.ToString());
    EXPECT_EQ(session.Texts({71381, 71174, 71175}), older.totalVirtual.ToString() + std::wstring(L"|||"));
    Size available;
    available.Initialize(session.Text(71382).c_str());
    EXPECT_NEAR(static_cast<double>(available.Bytes()), static_cast<double>(older.availablePhysical.Bytes()),
                static_cast<double>(older.totalPhysical.Bytes()) / 4);
    EXPECT_NE(session.Text(71382), session.Text(71063));
}

TEST(BandwidthTest, ComputesBitsPerSecond)
{
    const struct {
        std::uint64_t bytes;
        std::int64_t start, stop, frequency;
        const wchar_t* rate;
    } rows[] = {
        {1000000, 1, 501, 1000, L"16000000 bps"},
        {1, 1, 4, 1000, L"2666 bps"},
        {5000, 1, 2, 10000, L"40000000 bps"},  // less than a millisecond
        {0, 1, 11, 1000, L"0 bps"},
        {1000000, 0, 501, 1000, L""},
        {1000000, 501, 501, 1000, L""},
        {1000000, 501, 0, 1000, L""},
        {1000000, 1, 501, 0, L""},
    };
    for (const auto& [bytes, start, stop, frequency, rate] : rows)
        EXPECT_EQ(DownloadRate(bytes, start, stop, frequency), rate) << start << ' ' << stop;
}

TEST(NetworkDevice, MeasuresOnlyWhatIsWanted)
{
    test::TestSession session;
    const test::LogCapture log(3);
    EXPECT_TRUE(NetworkDevice().Detect());
    EXPECT_EQ(session.Text(71069), L"(none)");
    session.wanted.Assign(L"71069", L"", true);
    EXPECT_TRUE(NetworkDevice().Detect());  // the proxy of the tests refuses
    EXPECT_EQ(session.Text(71069), L"0.0 bps");
    const std::vector<std::wstring> lines = log.Lines();
    const auto speed = std::ranges::find(lines, L"TRACE Network speed is:  bps");
    ASSERT_GE(lines.end() - speed, 2);
    EXPECT_EQ(speed[1], L"TRACE Adding value: 0.0 bps to 71069");
}

}  // namespace
}  // namespace kel
