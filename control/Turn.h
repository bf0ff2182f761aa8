#pragma once

#include <windows.h>

#include <chrono>

#include "platform/Handles.h"

namespace kel {

/// A member's turn. The session, the probes and the log exist once per process and are not locked, and a host
/// may use the control from several apartments: while one has its turn, the members called in others wait.
///
/// A turn begins at once inside another one of the same thread, as when a page calls in while a detector
/// waits, and in a call that this thread makes into another apartment and waits for. Otherwise the thread
/// waits; calls into its apartment are served meanwhile (CoWaitForMultipleHandles), so that two apartments
/// that call each other do not block each other.
class Turn {
public:
    /// Longer than any member takes. A turn that lasts longer is stuck, perhaps because of a thread that
    /// waits for it.
    static constexpr std::chrono::milliseconds MaxWait = std::chrono::minutes(2);

    explicit Turn(std::chrono::milliseconds limit = MaxWait) noexcept;
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn();

    /// False after too long a wait, or when the system cannot create the event to wait for. The member must
    /// not touch the session then.
    explicit operator bool() const noexcept { return acquired; }

private:
    bool Take() noexcept;
    bool CanAcquire() const noexcept;
    void Wait(std::chrono::milliseconds limit) noexcept;

    DWORD thread = GetCurrentThreadId();
    GUID logicalThread = {};  ///< the same in all apartments that a call has gone through; null when unknown
    bool acquired = false;
    Turn* outer = nullptr;  ///< the turn around this one
    Turn* nextWaiting = nullptr;
    OwnedHandle changed;
};

}  // namespace kel
