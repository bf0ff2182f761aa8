#pragma once

#include <chrono>

namespace kel::program {

/// Decides when a local server has nothing left to do.
class Lifetime {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// How long a server waits for its first object. The system asks for one as soon as it has started it.
    static constexpr std::chrono::seconds MaxWaitForUse{30};
    /// How long it stays after the last object, for scripts that create one object after another.
    static constexpr std::chrono::seconds Linger{1};

    explicit Lifetime(Time start) : lastUse(start) {}

    /// Whether the server can end. To be asked often, as it notes when objects were last seen.
    /// @param isInUse whether there are objects or locks
    /// @param isAbandoned whether all processes that use them have ended
    bool IsOver(Time now, bool isInUse, bool isAbandoned);

private:
    Time lastUse;
    bool wasUsed = false;
};

}  // namespace kel::program
