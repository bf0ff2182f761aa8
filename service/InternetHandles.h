#pragma once

#include <windows.h>

#include <wininet.h>

#include <mutex>
#include <vector>

#include "diag/Owners.h"

namespace kel {

/// The WinINet handles of one exchange. Another thread may close them, which ends a call that is blocked in
/// one of them.
class InternetHandles {
public:
    InternetHandles() = default;
    InternetHandles(const InternetHandles&) = delete;
    InternetHandles& operator=(const InternetHandles&) = delete;
    ~InternetHandles() { CloseAll(); }

    /// Takes a handle into ownership and gives it back; null for null, and once all are closed.
    HINTERNET Keep(HINTERNET opened);

    /// Closes all, the youngest first, and whatever comes later.
    void CloseAll() noexcept;

    /// Whether the handles are closed. To be asked after each call that can block: the system may give a
    /// closed handle's number to the next exchange.
    bool AreClosed() const;

private:
    mutable std::mutex guard;
    bool closed = false;
    std::vector<OwnedInternet> handles;
};

}  // namespace kel
