#pragma once

#include <windows.h>

#include <wininet.h>

#include <chrono>
#include <mutex>
#include <vector>

#include "platform/Handles.h"

namespace kel {

using OwnedInternet = std::unique_ptr<void, Closer<&InternetCloseHandle>>;

/// The WinINet handles of one exchange. Another thread may close them, which ends a call that is blocked in
/// one of them.
///
/// WinINet follows redirects by itself. Where it knows no end, as under Wine, a server that redirects for
/// ever would cost the host a socket each time, hundreds a second. Redirects of requests that are opened
/// with `Context` are therefore slowed down after the tenth: each waits twice as long as the one before, up
/// to a minute.
class InternetHandles {
public:
    InternetHandles() = default;
    InternetHandles(const InternetHandles&) = delete;
    InternetHandles& operator=(const InternetHandles&) = delete;
    ~InternetHandles() { CloseAll(); }

    /// Opens WinINet for the control, with the system's proxy settings; null when that fails. Calls block.
    HINTERNET OpenSession();

    /// Bounds each single wait of a session or a request: for a connection, to send, to receive.
    static void LimitWaits(HINTERNET handle, std::chrono::milliseconds limit);

    /// What a request of the session has to be opened with.
    DWORD_PTR Context() { return reinterpret_cast<DWORD_PTR>(this); }

    /// Takes a handle into ownership and gives it back; null for null, and once all are closed.
    HINTERNET Keep(HINTERNET opened);

    /// Closes all, the youngest first, and whatever comes later.
    void CloseAll() noexcept;

    /// Whether the handles are closed. To be asked after each call that can block: the system may give a
    /// closed handle's number to the next exchange.
    bool AreClosed() const;

private:
    static void CALLBACK SlowDownRedirects(HINTERNET handle, DWORD_PTR context, DWORD status, LPVOID, DWORD);

    mutable std::mutex guard;
    bool closed = false;
    int redirects = 0;  // counted on the thread that makes the exchange's calls
    std::vector<OwnedInternet> handles;
};

}  // namespace kel
