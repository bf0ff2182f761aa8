// Common parts of the benchmarks: the clock, and the format of the lines with their figures.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace kel::bench {

/// The performance counter in milliseconds.
inline double Milliseconds()
{
    LARGE_INTEGER frequency = {};
    LARGE_INTEGER now = {};
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&now);
    return 1000.0 * static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

/// How long a body takes, in milliseconds.
template <typename Body>
double Timed(Body body)
{
    const double start = Milliseconds();
    body();
    return Milliseconds() - start;
}

/// How long one of many repetitions of a body takes on average, in milliseconds.
template <typename Body>
double TimedEach(int repetitions, Body body)
{
    return Timed([&] {
               for (int i = 0; i < repetitions; ++i)
                   body();
           }) /
           repetitions;
}

/// How long a body takes in the median of the given number of runs, in milliseconds.
template <typename Body>
double TimedMedian(int repetitions, Body body)
{
    std::vector<double> times(static_cast<std::size_t>(repetitions));
    std::ranges::generate(times, [&body] { return Timed(body); });
    std::ranges::sort(times);
    return times[times.size() / 2];
}

/// Prints a figure as "name value"; the driver reads it.
inline void Print(const std::string& name, double value)
{
    std::printf("%s %.6f\n", name.c_str(), value);
}

}  // namespace kel::bench
