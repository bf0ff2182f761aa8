#pragma once

#include <windows.h>

#include <chrono>

#include "platform/Handles.h"

namespace kel {

/// A member's turn. The session, the probes and the log are one for the process and not locked, and a host
/// may use the control from several apartments: while one has its turn, the members called in others wait.
///
/// A turn is had at once inside another one of the same thread, as when a page is let in while a detector
/// waits, and in what this thread called in another apartment and waits for. Where it must be waited for,
/// calls into the waiting apartment are served meanwhile (CoWaitForMultipleHandles), so that two apartments
/// that call each other do not wait for ever.
class Turn {
public:
    /// Longer than any member takes. A turn that is not passed on for so long is stuck, and those who wait
    /// for it may be what holds it up.
    static constexpr std::chrono::milliseconds LongestWait = std::chrono::minutes(2);

    explicit Turn(std::chrono::milliseconds limit = LongestWait) noexcept;
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn();

    /// False when it was waited for too long, or when the system has nothing to wait with: what it guards
    /// must be left alone then.
    explicit operator bool() const noexcept { return isHad; }

private:
    bool Take() noexcept;
    bool MayBegin() const noexcept;
    void Wait(std::chrono::milliseconds limit) noexcept;

    DWORD thread = GetCurrentThreadId();
    GUID logicalThread = {};  ///< the same in all apartments that a call has gone through; null when unknown
    bool isHad = false;
    Turn* outer = nullptr;  ///< the turn that this one stands in
    Turn* nextWaiting = nullptr;
    OwnedHandle changed;
};

}  // namespace kel
