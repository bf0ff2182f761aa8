#include "diag/Timer.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <array>

namespace kel {
namespace {

TEST(Timer, CountsWholeMillisecondsOrZero)
{
    const std::array<std::int64_t, 4> rows[] = {
        {1000, 3000, 1000, 2000}, {1, 1999, 1000000, 1}, {5, 4, 1000, 0},  {0, 3000, 1000, 0},
        {-4, 3000, 1000, 0},      {1, 3000, 0, 0},       {1, 3000, -1, 0},
    };
    for (const auto& [start, stop, frequency, milliseconds] : rows)
        EXPECT_EQ(Timer::ElapsedMilliseconds(start, stop, frequency), milliseconds) << start;
}

TEST(Timer, MeasuresTheRealClock)
{
    Timer timer;
    timer.Start();
    EXPECT_EQ(timer.ElapsedMilliseconds(), 0);
    for (const DWORD start = GetTickCount(); GetTickCount() - start < 50;)
        timer.Stop();
    EXPECT_GE(timer.ElapsedMilliseconds(), 30);
    EXPECT_LE(timer.ElapsedMilliseconds(), 2000);
}

}  // namespace
}  // namespace kel
