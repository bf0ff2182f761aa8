#include "server/protocol/RateLimit.h"

#include <algorithm>

namespace kel::server {

bool RateLimit::Take(Clock::time_point now)
{
    const std::lock_guard lock(turn);
    // Another thread may have been quicker.
    const Clock::duration passed = std::max(now - last, Clock::duration());
    room = std::min(perSecond, room + std::chrono::duration<double>(passed).count() * perSecond);
    last = std::max(now, last);
    if (room < 1)
        return false;
    room -= 1;
    return true;
}

}  // namespace kel::server
