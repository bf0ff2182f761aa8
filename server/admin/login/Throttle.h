#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <tuple>

namespace kel::server {

/// Slows down guesses of passwords: for each name, and for all names together, so that guesses at many names
/// are slowed down, too. A browser in which the account has logged in before has a separate count, so that
/// strangers' guesses do not lock the user out there. Its memory is bounded. For any thread.
class Throttle {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr int FreeFailures = 5;      // of a name, before it has to wait: 4 s, then twice as long
    static constexpr int FailuresAMinute = 30;  // of all names
    static constexpr std::size_t MaxNames = 1000;
    static constexpr std::chrono::seconds MaxWait{300};

    /// The origin of an attempt: a name, or the random text of a browser in which the account has logged in.
    struct Guest {
        std::string id;
        bool isKnown = false;

        bool operator<(const Guest& other) const
        {
            return std::tie(isKnown, id) < std::tie(other.isKnown, other.id);
        }
    };

    /// How long the guest has to wait before the next attempt; 0 for not at all.
    std::chrono::seconds Wait(const Guest& guest, Clock::time_point now = Clock::now());
    void Failed(const Guest& guest, Clock::time_point now = Clock::now());
    void Succeeded(const Guest& guest);

private:
    struct Failures {
        int count = 0;
        Clock::time_point last;
    };

    std::mutex turn;
    std::map<Guest, Failures> guests;
    Clock::time_point minute;  // the start of the minute in which `recent` attempts failed
    int recent = 0;
};

}  // namespace kel::server
