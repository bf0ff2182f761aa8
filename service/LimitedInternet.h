#pragma once

#include <windows.h>

#include <wininet.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <type_traits>

#include "diag/Owners.h"

namespace kel {

/// Owns a WinINet handle for a limited time: at the deadline it is closed, which ends whatever call is
/// blocked in it. The platform's own timeouts bound each wait only, and a server that sends a byte now and
/// then keeps within them for ever.
class LimitedInternet {
public:
    /// @param opened not null
    /// @throws std::runtime_error when no timer can be had; the handle is closed
    LimitedInternet(HINTERNET opened, std::chrono::milliseconds limit);
    LimitedInternet(const LimitedInternet&) = delete;
    LimitedInternet& operator=(const LimitedInternet&) = delete;
    ~LimitedInternet();

    /// The handle; calls on it fail after the deadline.
    HINTERNET Get() const { return handle; }

    /// Whether the deadline has passed.
    bool IsExpired() const { return !isOpen; }

private:
    static VOID CALLBACK Expire(PTP_CALLBACK_INSTANCE instance, PVOID context, PTP_TIMER timer);
    void Close();

    HINTERNET handle;
    std::atomic<bool> isOpen = true;
    std::unique_ptr<std::remove_pointer_t<PTP_TIMER>, Closer<&CloseThreadpoolTimer>> timer;
};

}  // namespace kel
