#include "detectors/BandwidthTest.h"

#include <gtest/gtest.h>

#include "detectors/NetworkDevice.h"
#include "support/LogCapture.h"
#include "support/TestSession.h"

namespace kel {
namespace {

TEST(BandwidthTest, ComputesBitsPerSecond)
{
    EXPECT_EQ(DownloadRate(1000000, 500), L"16000000 bps");
    EXPECT_EQ(DownloadRate(1, 3), L"2666 bps");
    EXPECT_EQ(DownloadRate(5000, 0), L"40000000 bps");
    EXPECT_EQ(DownloadRate(0, 10), L"0 bps");
}

TEST(NetworkDevice, MeasuresOnlyWhatIsWanted)
{
    test::TestSession session;
    const test::LogCapture log(3);
    EXPECT_TRUE(NetworkDevice().Detect());
    EXPECT_EQ(session.Text(71069), L"(none)");
    EXPECT_TRUE(log.Lines().empty());
    session.wanted.Assign(L"71069", L"");
    EXPECT_TRUE(NetworkDevice().Detect());  // the proxy of the tests refuses
    EXPECT_EQ(session.Text(71069), L"0.0 bps");
    EXPECT_EQ(log.Lines(), (std::vector<std::wstring>{L"TRACE Network speed is:  bps",
                                                      L"TRACE Adding value: 0.0 bps to 71069"}));
}

}  // namespace
}  // namespace kel
