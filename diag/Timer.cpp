#include "diag/Timer.h"

#include <windows.h>

namespace kel {

std::int64_t Timer::ReadCounter()
{
    LARGE_INTEGER reading = {};
    return QueryPerformanceCounter(&reading) ? reading.QuadPart : 0;
}

std::int64_t Timer::Frequency()
{
    LARGE_INTEGER frequency = {};
    return QueryPerformanceFrequency(&frequency) ? frequency.QuadPart : 0;
}

void Timer::Start()
{
    start = ReadCounter();
}

void Timer::Stop()
{
    stop = ReadCounter();
}

std::int64_t Timer::ElapsedMilliseconds() const
{
    return ElapsedMilliseconds(start, stop, Frequency());
}

std::int64_t Timer::ElapsedMilliseconds(std::int64_t start, std::int64_t stop, std::int64_t frequency)
{
    if (frequency < 1 || start < 1 || stop <= start)
        return 0;
    return (stop - start) * 1000 / frequency;
}

}  // namespace kel
