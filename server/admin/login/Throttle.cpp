#include "server/admin/login/Throttle.h"

#include <algorithm>

namespace kel::server {

namespace {

constexpr std::chrono::seconds Minute{60};
constexpr std::chrono::hours Memory{1};
constexpr int FirstWait = 4;  // seconds
constexpr int MaxDoublings = 10;

std::chrono::seconds Until(Throttle::Clock::time_point end, Throttle::Clock::time_point now)
{
    return std::max(std::chrono::seconds(0), std::chrono::ceil<std::chrono::seconds>(end - now));
}

}  // namespace

std::chrono::seconds Throttle::Wait(const Guest& guest, Clock::time_point now)
{
    const std::lock_guard lock(turn);
    const auto all =
        !guest.isKnown && recent >= FailuresAMinute ? Until(minute + Minute, now) : std::chrono::seconds(0);
    const auto found = guests.find(guest);
    if (found == guests.end() || found->second.count < FreeFailures)
        return all;
    const int doublings = std::min(found->second.count - FreeFailures, MaxDoublings);
    const auto wait = std::min(MaxWait, std::chrono::seconds(FirstWait << doublings));
    return std::max(all, Until(found->second.last + wait, now));
}

void Throttle::Failed(const Guest& guest, Clock::time_point now)
{
    const std::lock_guard lock(turn);
    if (now - minute >= Minute) {
        minute = now;
        recent = 0;
    }
    ++recent;
    if (guests.size() == MaxNames && !guests.contains(guest)) {
        guests.erase(std::min_element(guests.begin(), guests.end(), [](const auto& left, const auto& right) {
            return left.second.last < right.second.last;
        }));
    }
    Failures& failures = guests[guest];
    failures.count = now - failures.last > Memory ? 1 : failures.count + 1;
    failures.last = now;
}

void Throttle::Succeeded(const Guest& guest)
{
    const std::lock_guard lock(turn);
    guests.erase(guest);
}

}  // namespace kel::server
