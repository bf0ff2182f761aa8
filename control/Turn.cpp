#include "control/Turn.h"

#include <objbase.h>

#include "run/LogStart.h"

namespace kel {

namespace {

/// Guards the variables below, for a few instructions at a time.
SRWLOCK guard = SRWLOCK_INIT;
Turn* innermost = nullptr;
Turn* firstWaiting = nullptr;

class Exclusive {
public:
    Exclusive() noexcept { AcquireSRWLockExclusive(&guard); }
    Exclusive(const Exclusive&) = delete;
    Exclusive& operator=(const Exclusive&) = delete;
    ~Exclusive() { ReleaseSRWLockExclusive(&guard); }
};

/// Removes a turn from a list.
void Remove(Turn*& first, Turn* Turn::*next, const Turn* removed) noexcept
{
    Turn** place = &first;
    while (*place != removed)
        place = &((*place)->*next);
    *place = removed->*next;
}

/// @return false when the time is up, or the event cannot be waited for
bool WaitInApartment(HANDLE event, DWORD milliseconds) noexcept
{
    DWORD index = 0;
    const HRESULT result = CoWaitForMultipleHandles(0, milliseconds, 1, &event, &index);
    if (FAILED(result) && result != RPC_S_CALLPENDING)  // a thread without COM has no calls to serve
        return WaitForSingleObject(event, milliseconds) == WAIT_OBJECT_0;
    return SUCCEEDED(result);
}

}  // namespace

Turn::Turn(std::chrono::milliseconds limit) noexcept
{
    CoGetCurrentLogicalThreadId(&logicalThread);
    if (!Take())
        Wait(limit);
}

Turn::~Turn()
{
    if (!acquired)
        return;
    if (outer == nullptr)
        FlushLogFile();  // the host may end before the next call
    const Exclusive exclusive;
    Remove(innermost, &Turn::outer, this);
    for (const Turn* waiting = firstWaiting; waiting != nullptr; waiting = waiting->nextWaiting)
        SetEvent(waiting->changed.get());
}

bool Turn::Take() noexcept
{
    const Exclusive exclusive;
    acquired = CanAcquire();
    if (acquired) {
        outer = innermost;
        innermost = this;
    }
    return acquired;
}

bool Turn::CanAcquire() const noexcept
{
    if (innermost == nullptr || innermost->thread == thread)
        return true;
    if (logicalThread == GUID{} || innermost->logicalThread != logicalThread)
        return false;
    // Called by the thread that has the turn. But an outer thread waits for the innermost one, and a turn
    // that it begins meanwhile would run at the same time.
    for (const Turn* turn = innermost; turn != nullptr; turn = turn->outer) {
        if (turn->thread == thread)
            return false;
    }
    return true;
}

/// When a turn ends, every waiting thread checks for itself whether it may begin, so that a thread that is
/// serving a call does not delay the others.
void Turn::Wait(std::chrono::milliseconds limit) noexcept
{
    changed.reset(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    if (!changed)
        return;
    {
        const Exclusive exclusive;
        nextWaiting = firstWaiting;
        firstWaiting = this;
    }
    while (!Take() && WaitInApartment(changed.get(), static_cast<DWORD>(limit.count()))) {
    }
    const Exclusive exclusive;
    Remove(firstWaiting, &Turn::nextWaiting, this);
}

}  // namespace kel
