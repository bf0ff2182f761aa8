// What the service keeps for a while, within bounds: reports, failed log-ins, and memory that it does not
// use.
#include <gtest/gtest.h>

#include <thread>

#include "server/admin/login/Throttle.h"
#include "server/ops/HeapTrimmer.h"
#include "server/ops/Memory.h"
#include "server/protocol/ReportCache.h"

namespace kel::server {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

TEST(ReportCache, KeepsTheReportsThatWereUsedLast)
{
    const auto report = std::make_shared<const Report>(Report::Read(
        "<groups><group id=\"71424\"><value>a session that takes some bytes</value></group></groups>"));
    ReportCache cache(2 * report->Bytes());
    for (const int id : {1, 2})
        cache.Add(id, report);
    EXPECT_EQ(cache.Find(1), report);
    cache.Add(3, report);
    EXPECT_TRUE(cache.Find(1)) << "it was asked for after 2";
    EXPECT_FALSE(cache.Find(2)) << "there is room for two";
    cache.Add(4, report);
    EXPECT_TRUE(cache.Find(1)) << "it was asked for after 3";
    EXPECT_TRUE(cache.Find(4)) << "the newest is gone";
}

TEST(HeapTrimmer, ReturnsWhatACrowdHasLeft)
{
    const HeapTrimmer trimmer;
    const std::size_t before = ResidentMemory();
    std::vector<std::unique_ptr<std::string>> crowd, left;
    for (int i = 0; i < 3000; ++i) {
        crowd.push_back(std::make_unique<std::string>(50'000, 'x'));
        if (i % 100 == 0)
            left.push_back(std::make_unique<std::string>(50'000, 'x'));  // the heap does not end before it
    }
    crowd.clear();
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (ResidentMemory() > before + 50'000'000 && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(milliseconds(20));
    EXPECT_LT(ResidentMemory(), before + 50'000'000);
}

TEST(Throttle, MakesAGuestWaitTwiceAsLongEachTime)
{
    Throttle throttle;
    Throttle::Clock::time_point now(std::chrono::hours(9));
    int failure = 0;
    for (const int wait : {0, 0, 0, 0, 4, 8, 16, 32, 64, 128, 256, 300, 300}) {
        throttle.Failed({"ann"}, now);
        EXPECT_EQ(throttle.Wait({"ann"}, now), seconds(wait)) << "after failure " << ++failure;
    }
    EXPECT_EQ(throttle.Wait({"ann"}, now + milliseconds(299'001)), seconds(1)) << "not rounded up";
    EXPECT_EQ(throttle.Wait({"ann"}, now + seconds(300)), seconds(0));
    EXPECT_EQ(throttle.Wait({"ann", true}, now), seconds(0)) << "a browser of that name";
    throttle.Failed({"ann"}, now += seconds(3'600));
    EXPECT_EQ(throttle.Wait({"ann"}, now), seconds(300)) << "forgotten within an hour";
    throttle.Failed({"ann"}, now += seconds(3'601));
    EXPECT_EQ(throttle.Wait({"ann"}, now), seconds(0)) << "remembered for more than an hour";
}

TEST(Throttle, MakesAllButKnownBrowsersWaitForTheEndOfAMinute)
{
    Throttle throttle;
    const Throttle::Clock::time_point now(std::chrono::hours(9));
    for (int number = 1; number <= 30; ++number) {
        EXPECT_EQ(throttle.Wait({"ann"}, now), seconds(0)) << "failure " << number;
        throttle.Failed({std::to_string(number)}, now + seconds(number));
    }
    EXPECT_EQ(throttle.Wait({"ann"}, now + seconds(31)), seconds(30));
    EXPECT_EQ(throttle.Wait({"ann", true}, now + seconds(31)), seconds(0));
    throttle.Failed({"ann"}, now + seconds(61));
    EXPECT_EQ(throttle.Wait({"ann"}, now + seconds(61)), seconds(0)) << "a new minute has begun";
}

TEST(Throttle, ForgetsTheOldestFailures)
{
    Throttle throttle;
    Throttle::Clock::time_point now(std::chrono::hours(9));
    for (const char* name : {"first", "second"}) {
        now += milliseconds(1);
        for (int failure = 0; failure < Throttle::FreeFailures; ++failure)
            throttle.Failed({name, true}, now);
    }
    for (std::size_t number = 1; number < Throttle::MaxNames; ++number)
        throttle.Failed({std::to_string(number), true}, now += milliseconds(1));
    EXPECT_EQ(throttle.Wait({"first", true}, now), seconds(0));
    EXPECT_GT(throttle.Wait({"second", true}, now), seconds(0));
}

}  // namespace

}  // namespace kel::server
