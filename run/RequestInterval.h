#pragma once

#include <cstdint>

namespace kel {

/// Decides when a request of a session is due again.
class RequestInterval {
public:
    /// The minimum time between two of them, in seconds.
    static constexpr std::int64_t Seconds = 600;

    /// @param now seconds since 1970
    bool IsDue(std::int64_t now) const { return !isSent || now - lastSent >= Seconds; }

    /// Records a request.
    /// @param now seconds since 1970, as read when the request was found to be due
    void MarkSent(std::int64_t now)
    {
        isSent = true;
        lastSent = now;
    }

    /// Makes the next request due at once.
    void Reset() { isSent = false; }

private:
    bool isSent = false;
    std::int64_t lastSent = 0;
};

}  // namespace kel
