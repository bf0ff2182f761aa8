#pragma once

#include <chrono>

#include "server/http/Limits.h"

namespace kel::server {

/// The bounds of reading stored reports for one answer, in time and in bytes.
class ScanBudget {
public:
    ScanBudget() = default;
    explicit ScanBudget(std::size_t maxBytes) : maxBytes(maxBytes) {}

    /// Whether that many more bytes may be read; always true for the first ones.
    bool Allows(std::size_t more)
    {
        const bool isFirst = bytes == 0;
        bytes += more;
        return isFirst || (bytes <= maxBytes && Clock::now() < end);
    }

private:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::seconds MaxTime{1};

    std::size_t maxBytes = 32 * Limits::Megabyte;  // a usual report has some kilobytes
    Clock::time_point end = Clock::now() + MaxTime;
    std::size_t bytes = 0;
};

}  // namespace kel::server
