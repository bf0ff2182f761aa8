#pragma once

#include <chrono>
#include <mutex>

namespace kel::server {

/// Allows a number of events in a second, and as many at once. For any thread.
class RateLimit {
public:
    using Clock = std::chrono::steady_clock;

    explicit RateLimit(unsigned perSecond) : perSecond(perSecond), room(perSecond) {}

    /// False, and nothing changes, when there were too many in the last second.
    bool Take(Clock::time_point now = Clock::now());

private:
    const double perSecond;
    std::mutex turn;
    double room;
    Clock::time_point last = Clock::now();
};

}  // namespace kel::server
