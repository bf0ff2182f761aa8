#pragma once

#include <cstdint>

namespace kel {

/// Measures an interval with the performance counter (`QueryPerformanceCounter`).
class Timer {
public:
    virtual ~Timer() = default;

    void Start();
    void Stop();

    /// The performance counter; 0 when it does not work.
    static std::int64_t ReadCounter();

    /// How often that counter counts in a second; 0 when it does not work.
    static std::int64_t Frequency();

    /// Whole milliseconds between Start and Stop; 0 when either is missing or the counter does not work.
    std::int64_t ElapsedMilliseconds() const;

    /// The same over given readings: 0 when the frequency or the start is below 1, or the stop is not later.
    static std::int64_t ElapsedMilliseconds(std::int64_t start, std::int64_t stop, std::int64_t frequency);

private:
    std::int64_t start = 0;
    std::int64_t stop = 0;
};

}  // namespace kel
