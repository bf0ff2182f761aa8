#include "server/protocol/RateLimit.h"

#include <algorithm>

namespace kel::server {

bool RateLimit::Take()
{
    const std::lock_guard lock(turn);
    const Clock::time_point now = Clock::now();
    room = std::min(perSecond, room + std::chrono::duration<double>(now - last).count() * perSecond);
    last = now;
    if (room < 1)
        return false;
    room -= 1;
    return true;
}

}  // namespace kel::server
