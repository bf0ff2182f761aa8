#include "service/HttpExchange.h"

#include <wininet.h>

#include <algorithm>
#include <array>
#include <cwchar>
#include <stdexcept>

#include "diag/Log.h"
#include "service/ExchangeLimits.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr DWORD ConnectFlags = INTERNET_FLAG_NO_AUTH;
static_assert(ConnectFlags == 0x40000);
constexpr DWORD RequestFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_EXISTING_CONNECT |
                               INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_KEEP_CONNECTION;
static_assert(RequestFlags == 0xA4400000);
/// No redirect is followed: one could lead to plain HTTP.
constexpr DWORD SecureFlags = INTERNET_FLAG_SECURE | INTERNET_FLAG_NO_AUTO_REDIRECT;
constexpr DWORD PieceSize = 2000;

HINTERNET Require(HINTERNET handle, const char* failure)
{
    if (handle == nullptr)
        throw std::runtime_error(failure);
    return handle;
}

HINTERNET OpenRequest(const HttpRequest& request, InternetSession& internet)
{
    const HINTERNET session = Require(internet.Open(), "Can't open Internet.");
    const INTERNET_PORT port = request.isSecure ? INTERNET_DEFAULT_HTTPS_PORT : INTERNET_DEFAULT_HTTP_PORT;
    const DWORD flags = RequestFlags | (request.isSecure ? SecureFlags : 0);
    const HINTERNET connection =
        Require(internet.Keep(InternetConnectW(session, request.host.c_str(), port, L"", L"",
                                               INTERNET_SERVICE_HTTP, ConnectFlags, 0)),
                "Can't open Internet connection.");
    const wchar_t* acceptTypes[] = {L"text/*", nullptr};
    const HINTERNET opened =
        Require(internet.Keep(HttpOpenRequestW(connection, request.verb.c_str(), request.path.c_str(),
                                               L"HTTP/1.1", nullptr, acceptTypes, flags, internet.Context())),
                "Can't open Internet request.");
    internet.LimitWaits(opened, ExchangeLimits::Wait);
    InternetSession::SuppressLogon(opened);
    return opened;
}

/// The address that answered, after all redirects; empty when WinINet does not report it.
std::wstring AnsweringAddress(HINTERNET request)
{
    DWORD size = 0;
    InternetQueryOptionW(request, INTERNET_OPTION_URL, nullptr, &size);
    std::wstring address(size / sizeof(wchar_t) + 1, L'\0');
    size = static_cast<DWORD>(address.size() * sizeof(wchar_t));
    if (!InternetQueryOptionW(request, INTERNET_OPTION_URL, address.data(), &size))
        return {};
    return address.c_str();  // up to its zero
}

void NoteLongWait(const InternetSession& internet, DWORD error, HttpAnswer& answer)
{
    if (internet.HasWaitedTooLong(error))
        answer.lateIn = internet.Stage();
}

void ReadBody(HINTERNET request, InternetSession& internet, HttpAnswer& answer)
{
    for (;;) {
        internet.Enter(ExchangeStage::Reading);
        std::array<char, PieceSize> piece = {};
        // Waits for the first byte only; a read alone would wait until the piece is full.
        DWORD count = 0;
        if (!InternetQueryDataAvailable(request, &count, 0, 0) ||
            !InternetReadFile(request, piece.data(), std::min(count, PieceSize), &count)) {
            NoteLongWait(internet, GetLastError(), answer);
            answer.isCut = true;
            return;
        }
        if (count == 0 || internet.IsAbandoned()) {
            answer.isCut = !InternetSession::IsWhole(request, answer.body.size());
            return;
        }
        if (answer.body.size() + count > ExchangeLimits::Answer) {
            answer.failure = "The service's answer is too long.";
            answer.isCut = true;
            return;
        }
        answer.body.append(piece.data(), count);
    }
}

}  // namespace

bool HttpAnswer::IsRedirect() const
{
    const auto code = ToInteger(status.value_or(L""));
    return code >= 300 && code < 400;
}

bool HttpAnswer::IsError() const
{
    return ToInteger(status.value_or(L"")) >= 400;
}

void HttpAnswer::LogStatus() const
{
    if (!status)
        WriteLog(LogWarning, L"Can't get status.");
    if (!statusText)
        WriteLog(LogWarning, L"Can't get data.");
    WriteLog(IsError() ? LogWarning : LogTrace, L"Status: ", status.value_or(L""), L' ',
             statusText.value_or(L""));
}

bool IsOfHost(const std::wstring& address, const std::wstring& host, bool isSecure)
{
    URL_COMPONENTSW parts = {};
    parts.dwStructSize = sizeof(parts);
    parts.dwHostNameLength = 1;  // asks for a pointer into the address
    if (!InternetCrackUrlW(address.c_str(), 0, 0, &parts) || parts.lpszHostName == nullptr)
        return false;
    if (isSecure && parts.nScheme != INTERNET_SCHEME_HTTPS)
        return false;
    const std::wstring found(parts.lpszHostName, parts.dwHostNameLength);
    return _wcsicmp(found.c_str(), host.c_str()) == 0;
}

void Perform(HttpRequest& request, InternetSession& internet, HttpAnswer& answer)
{
    HINTERNET opened = nullptr;
    try {
        opened = OpenRequest(request, internet);
    } catch (const std::runtime_error&) {
        answer.openError = GetLastError();
        throw;
    }
    answer.timer.Start();
    const BOOL sent = HttpSendRequestW(opened, request.headers.empty() ? nullptr : request.headers.c_str(),
                                       static_cast<DWORD>(request.headers.size()),
                                       request.body.empty() ? nullptr : request.body.data(),
                                       static_cast<DWORD>(request.body.size()));
    answer.sendError = sent ? ERROR_SUCCESS : GetLastError();
    answer.timer.Stop();
    if (!sent)
        NoteLongWait(internet, answer.sendError, answer);
    if (!sent || internet.IsAbandoned())
        return;
    answer.status = InternetSession::QueryInfo(opened, HTTP_QUERY_STATUS_CODE);
    answer.statusText = InternetSession::QueryInfo(opened, HTTP_QUERY_STATUS_TEXT);
    // WinINet follows redirects, with the user's cookies. A page must not read through the control what its
    // browser would not let it read, such as a host of the local network.
    if (!IsOfHost(AnsweringAddress(opened), request.host, request.isSecure))
        answer.failure = "The answer came from another host than the service's.";
    else if (request.isSecure && answer.IsRedirect())
        answer.failure = "The service redirected the request.";
    answer.isOfOtherHost = answer.failure != nullptr;
    if (!answer.isOfOtherHost)
        ReadBody(opened, internet, answer);
}

}  // namespace kel
