#pragma once

#include <windows.h>

#include <wininet.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/Handles.h"

namespace kel {

using OwnedInternet = std::unique_ptr<void, Closer<&InternetCloseHandle>>;

/// The stage of an exchange, as the log names it.
struct ExchangeStage {
    static constexpr const char* Opening = "opening";
    static constexpr const char* Sending = "sending";
    static constexpr const char* WaitingForHeaders = "waiting for headers";
    static constexpr const char* Reading = "reading";
};

/// One exchange through WinINet, as the thread that makes its calls sees it. Only that thread uses and closes
/// the handles: closing one under another thread's call is not safe on every system. Other threads may ask
/// for the stage, and abandon the exchange.
///
/// WinINet follows redirects by itself. Where it does not limit their number, as under Wine, a server that
/// redirects endlessly would cost the host a socket each time, hundreds a second. Redirects of requests that
/// are opened with `Context` are therefore slowed down after the tenth: each waits twice as long as the one
/// before, up to a minute.
class InternetSession {
public:
    InternetSession() = default;
    InternetSession(const InternetSession&) = delete;
    InternetSession& operator=(const InternetSession&) = delete;
    ~InternetSession() { Close(); }

    /// Opens WinINet for the control, with the system's proxy settings; null when that fails. Calls block.
    HINTERNET Open();

    /// Bounds each single wait of the session or of a request: for a connection, to send, to receive.
    void LimitWaits(HINTERNET handle, std::chrono::milliseconds limit);

    /// Keeps the user's logon from the server that a request goes to, since it would be sent unencrypted.
    /// Call this before the request is sent; Wine and systems before Windows 7 refuse it.
    static void SuppressLogon(HINTERNET request);

    /// The context with which a request of the session has to be opened.
    DWORD_PTR Context() { return reinterpret_cast<DWORD_PTR>(this); }

    /// Takes ownership of a handle and returns it; null for null, and for an abandoned exchange.
    HINTERNET Keep(HINTERNET opened);

    /// Closes all handles, the youngest first.
    void Close() noexcept;

    /// Records that a stage, or another wait in it, begins.
    void Enter(const char* newStage);

    /// Whether a call that has just failed waited up to its limit since the stage was entered.
    /// @param error the call's error code; not meaningful under Wine
    bool HasWaitedTooLong(DWORD error) const;

    /// A text of the answer's headers, by the number of the query; nullopt when they lack it.
    static std::optional<std::wstring> QueryInfo(HINTERNET request, DWORD what);

    /// Whether an answer is as long as its headers say; true when they do not say it. One that was cut looks
    /// like one that ended otherwise.
    static bool IsWhole(HINTERNET request, std::uint64_t length);

    /// The stage of the exchange.
    const char* Stage() const { return stage; }

    /// Abandons the exchange: nothing waits for it any more.
    void Abandon() { isAbandoned = true; }

    /// Whether the exchange is abandoned. It checks this after each call that can block, and ends.
    bool IsAbandoned() const { return isAbandoned; }

private:
    static void CALLBACK Follow(HINTERNET handle, DWORD_PTR context, DWORD status, LPVOID information, DWORD);
    void SlowDownRedirect();

    std::atomic<bool> isAbandoned = false;
    std::atomic<const char*> stage = ExchangeStage::Opening;
    ULONGLONG stageStart = GetTickCount64();
    std::chrono::milliseconds waitLimit = std::chrono::milliseconds::max();
    int redirects = 0;
    std::vector<OwnedInternet> handles;
};

}  // namespace kel
