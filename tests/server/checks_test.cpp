// What bounds and counts the checks of visitors whose page waits.
#include <gtest/gtest.h>

#include "server/base/CheckSteps.h"
#include "server/protocol/RateLimit.h"

namespace kel::server {

namespace {

TEST(RateLimit, AllowsSoManyASecondAndNoMoreAtOnce)
{
    RateLimit limit(2);
    const auto start = RateLimit::Clock::now();
    const std::pair<int, bool> rows[] = {{0, true},    {0, true},    {0, false},    {499, false},
                                         {501, true},  {600, false}, {1100, true},  {1000, false},
                                         {9000, true}, {9000, true}, {9000, false}, {9501, true}};
    int row = 0;
    for (const auto& [milliseconds, isAllowed] : rows)
        EXPECT_EQ(limit.Take(start + std::chrono::milliseconds(milliseconds)), isAllowed)
            << "row " << row++ << ", at " << milliseconds << " ms";
}

TEST(CheckSteps, CountsEachStepOnceForASessionThatIsExpected)
{
    CheckSteps steps;
    steps.Reach("a", CheckSteps::Begun);
    EXPECT_EQ(steps.Of(CheckSteps::Begun), 0U) << "a session that no page waits for";
    for (int time = 0; time < 2; ++time) {
        steps.Expect("a");
        steps.Reach("a", CheckSteps::Begun);
    }
    EXPECT_EQ(steps.Of(CheckSteps::Begun), 1U);
    EXPECT_EQ(steps.Of(CheckSteps::Shown), 0U);
    for (std::size_t i = 0; i <= CheckSteps::MaxSessions; ++i) {
        steps.Expect(std::to_string(i));
        if (i == 10)
            steps.Expect("0");
    }
    for (const auto& [session, count] : {std::pair{"a", 1U}, {"0", 2U}}) {
        steps.Reach(session, CheckSteps::Begun);
        EXPECT_EQ(steps.Of(CheckSteps::Begun), count) << session << ", after many others";
    }
}

}  // namespace

}  // namespace kel::server
