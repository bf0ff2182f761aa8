#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <string>

namespace kel::server {

/// Slows those down who guess passwords: for each name, and for all together, so that many names are no way
/// round it. What it remembers is bounded. For any thread.
class Throttle {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr int FreeFailures = 5;  // of a name, before it has to wait: a second, then twice as long
    static constexpr int FailuresAMinute = 30;  // of all names
    static constexpr std::size_t MostNames = 1000;
    static constexpr std::chrono::seconds LongestWait{300};

    /// How long to wait before a log-in by that name may be tried; 0 when it may be now.
    std::chrono::seconds Wait(const std::string& name, Clock::time_point now = Clock::now());
    void Failed(const std::string& name, Clock::time_point now = Clock::now());
    void Succeeded(const std::string& name);

private:
    struct Failures {
        int count = 0;
        Clock::time_point last;
    };

    std::mutex turn;
    std::map<std::string, Failures> names;
    Clock::time_point minute;  // when the minute began in which `recent` failed
    int recent = 0;
};

}  // namespace kel::server
