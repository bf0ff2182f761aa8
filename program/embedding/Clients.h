#pragma once

#include <windows.h>

#include <chrono>
#include <mutex>
#include <vector>

#include "platform/Handles.h"

namespace kel::program {

/// The processes that use a local server's objects. COM itself notices only after minutes that one has ended
/// without releasing them (Wine never does), so the server watches the processes that it knows to be callers.
/// May be used by several threads.
class Clients {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// How long a call by an unknown process proves that there is a client. An object that the system creates
    /// for a client makes its client known by the first call.
    static constexpr std::chrono::seconds MaxUnknown{20};

    /// Notes a call by a process; by an unknown one for 0, or where the process cannot be watched.
    void Note(DWORD id, Time now) noexcept;

    /// Whether all processes that have called have ended. False where none is known: then it is left to COM.
    bool AreGone(Time now) noexcept;

private:
    struct Client {
        DWORD id;
        OwnedHandle process;
    };

    std::mutex mutex;
    std::vector<Client> living;
    bool wereKnown = false;
    Time lastUnknown = Time::min();
};

}  // namespace kel::program
