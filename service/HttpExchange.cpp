#include "service/HttpExchange.h"

#include <wininet.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cwchar>
#include <stdexcept>

namespace kel {

namespace {

constexpr INTERNET_PORT Port = 80;
constexpr DWORD ConnectFlags = INTERNET_FLAG_NO_AUTH;
constexpr DWORD RequestFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_EXISTING_CONNECT |
                               INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_KEEP_CONNECTION;
static_assert(RequestFlags == 0xA4400000);
constexpr DWORD PieceSize = 2000;
/// Bytes. The longest answer that the service gives is a page of some hundred kilobytes.
constexpr std::size_t LongestAnswer = std::size_t{16} << 20;
/// Of each single wait for the server; the whole exchange has its own limit.
constexpr std::chrono::seconds WaitLimit{30};

HINTERNET Opened(HINTERNET handle, const char* failure)
{
    if (handle == nullptr)
        throw std::runtime_error(failure);
    return handle;
}

HINTERNET Open(const HttpRequest& request, InternetHandles& handles)
{
    const HINTERNET session = Opened(handles.OpenSession(), "Can't open Internet.");
    const HINTERNET connection =
        Opened(handles.Keep(InternetConnectW(session, request.host.c_str(), Port, L"", L"",
                                             INTERNET_SERVICE_HTTP, ConnectFlags, 0)),
               "Can't open Internet connection.");
    const wchar_t* acceptTypes[] = {L"text/*", nullptr};
    const HINTERNET opened = Opened(
        handles.Keep(HttpOpenRequestW(connection, request.verb.c_str(), request.path.c_str(), L"HTTP/1.1",
                                      nullptr, acceptTypes, RequestFlags, handles.Context())),
        "Can't open Internet request.");
    InternetHandles::LimitWaits(opened, WaitLimit);
    return opened;
}

std::optional<std::wstring> QueryInfo(HINTERNET request, DWORD what)
{
    std::array<wchar_t, 256> text = {};
    DWORD size = sizeof(text) - sizeof(wchar_t);
    if (HttpQueryInfoW(request, what, text.data(), &size, nullptr))
        return text.data();
    return {};
}

/// The host that answered, after all redirects; empty when WinINet does not tell it.
std::wstring AnsweringHost(HINTERNET request)
{
    DWORD size = 0;
    InternetQueryOptionW(request, INTERNET_OPTION_URL, nullptr, &size);
    std::wstring address(size / sizeof(wchar_t) + 1, L'\0');
    size = static_cast<DWORD>(address.size() * sizeof(wchar_t));
    URL_COMPONENTSW parts = {};
    parts.dwStructSize = sizeof(parts);
    parts.dwHostNameLength = 1;  // asks for a pointer into the address
    if (!InternetQueryOptionW(request, INTERNET_OPTION_URL, address.data(), &size) ||
        !InternetCrackUrlW(address.c_str(), 0, 0, &parts) || parts.lpszHostName == nullptr)
        return {};
    return {parts.lpszHostName, parts.dwHostNameLength};
}

void ReadBody(HINTERNET request, const InternetHandles& handles, HttpAnswer& answer)
{
    for (;;) {
        std::array<char, PieceSize> piece = {};
        // Waits for the first byte only; a read alone would wait until the piece is full.
        DWORD count = 0;
        if (!InternetQueryDataAvailable(request, &count, 0, 0) || handles.AreClosed())
            return;
        if (!InternetReadFile(request, piece.data(), std::min(count, PieceSize), &count) ||
            handles.AreClosed() || count == 0)
            return;
        if (answer.body.size() + count > LongestAnswer) {
            answer.failure = "The service's answer is too long.";
            return;
        }
        answer.body.append(piece.data(), count);
    }
}

}  // namespace

void Perform(HttpRequest& request, InternetHandles& handles, HttpAnswer& answer)
{
    const HINTERNET opened = Open(request, handles);
    answer.timer.Start();
    const BOOL sent = HttpSendRequestW(opened, request.headers.empty() ? nullptr : request.headers.c_str(),
                                       static_cast<DWORD>(request.headers.size()),
                                       request.body.empty() ? nullptr : request.body.data(),
                                       static_cast<DWORD>(request.body.size()));
    answer.sendError = sent ? ERROR_SUCCESS : GetLastError();
    answer.timer.Stop();
    if (!sent || handles.AreClosed())
        return;
    answer.status = QueryInfo(opened, HTTP_QUERY_STATUS_CODE);
    answer.statusText = QueryInfo(opened, HTTP_QUERY_STATUS_TEXT);
    // WinINet follows redirects, with the user's cookies. A page must not read through the control what its
    // browser would not let it read, such as a host of the local network.
    if (_wcsicmp(AnsweringHost(opened).c_str(), request.host.c_str()) != 0)
        answer.failure = "The answer came from another host than the service's.";
    else
        ReadBody(opened, handles, answer);
}

}  // namespace kel
