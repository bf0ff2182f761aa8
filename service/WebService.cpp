#include "service/WebService.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>
#include <utility>

#include "BuildSettings.h"
#include "diag/Log.h"
#include "diag/LogScope.h"
#include "diag/Owners.h"
#include "service/LimitedInternet.h"
#include "service/Utf8.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr const wchar_t* Agent = L"KEL";
constexpr INTERNET_PORT Port = 80;
constexpr DWORD ConnectFlags = 0x40000;
constexpr DWORD RequestFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_EXISTING_CONNECT |
                               INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_KEEP_CONNECTION;
static_assert(RequestFlags == 0xA4400000);
// The line break stands the wrong way round; the service accepts it, and so it stays.
constexpr const wchar_t* HeaderTemplate = L"Content-Type: ^content_type; charset=utf-8\n\rContent-Length: ";
constexpr DWORD PieceSize = 2000;

/// What one exchange may take of the page that waits for it. The longest answer that the service gives is an
/// analysis page of some hundred kilobytes.
constexpr std::chrono::seconds TimeLimit{60};
constexpr std::chrono::seconds WaitLimit{30};
constexpr std::size_t ResponseLimit = 16 * 1024 * 1024;

HINTERNET Opened(HINTERNET handle, const char* failure)
{
    if (handle == nullptr)
        throw std::runtime_error(failure);
    return handle;
}

/// Bounds each single wait for the server; the whole exchange has its own limit.
void LimitWaits(HINTERNET request)
{
    for (const DWORD option :
         {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_SEND_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT}) {
        auto milliseconds = static_cast<DWORD>(std::chrono::milliseconds(WaitLimit).count());
        InternetSetOptionW(request, option, &milliseconds, sizeof(milliseconds));
    }
}

std::wstring QueryInfo(HINTERNET request, DWORD what, const wchar_t* failure)
{
    std::array<wchar_t, 256> text = {};
    DWORD size = sizeof(text) - sizeof(wchar_t);
    if (HttpQueryInfoW(request, what, text.data(), &size, nullptr))
        return text.data();
    WriteLog(LogWarning, failure);
    return {};
}

void LogHeaders(const std::wstring& headers)
{
    if (!Log::Instance().IsEnabled(LogMark))
        return;
    for (std::size_t start = 0; start < headers.size();) {
        const std::size_t end = std::min(headers.find_first_of(L"\r\n", start), headers.size());
        const std::wstring header = headers.substr(start, end - start);
        const std::size_t colon = header.find(L": ");
        if (colon != std::wstring::npos)
            WriteLog(LogMark, L"Header: ", header.substr(0, colon), L" = ", header.substr(colon + 2));
        start = end + 1;
    }
}

std::string ReadResponse(const LimitedInternet& request)
{
    std::string bytes;
    for (;;) {
        std::array<char, PieceSize> piece = {};
        // Waits for the first byte only; a read alone would wait until the piece is full.
        DWORD count = 0;
        if (!InternetQueryDataAvailable(request.Get(), &count, 0, 0) || request.IsExpired())
            return bytes;
        if (!InternetReadFile(request.Get(), piece.data(), std::min<DWORD>(count, PieceSize), &count) ||
            count == 0)
            return bytes;
        if (bytes.size() + count > ResponseLimit)
            throw std::runtime_error("The service's answer is too long.");
        bytes.append(piece.data(), count);
    }
}

}  // namespace

WebService::WebService(const wchar_t* requestVerb, std::wstring requestPath, std::wstring requestBody)
    : host(KEL_SERVICE_HOST),
      verb(requestVerb),
      path(std::move(requestPath)),
      contentType(L"application/xml"),
      body(std::move(requestBody))
{
}

WebService::~WebService() = default;

void WebService::Call() noexcept
{
    try {
        const LogScope trace(L"kel::WebService::Call", LogScope::Tracing());
        try {
            Exchange();
        } catch (const std::exception& error) {
            WriteLog(LogError, error.what());
        }
    } catch (...) {
        ReportFailure(LogError, L"The request to the analysis service failed.");
    }
}

void WebService::Exchange()
{
    const OwnedInternet session(Opened(
        InternetOpenW(Agent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0), "Can't open Internet."));
    const OwnedInternet connection(Opened(
        InternetConnectW(session.get(), host.c_str(), Port, L"", L"", INTERNET_SERVICE_HTTP, ConnectFlags, 0),
        "Can't open Internet connection."));
    const wchar_t* acceptTypes[] = {L"text/*", nullptr};
    const LimitedInternet request(Opened(HttpOpenRequestW(connection.get(), verb.c_str(), path.c_str(),
                                                          L"HTTP/1.1", nullptr, acceptTypes, RequestFlags, 0),
                                         "Can't open Internet request."),
                                  TimeLimit);
    LimitWaits(request.Get());
    timer.Start();
    Send(request.Get());
    timer.Stop();
    WriteLog(LogTrace, L"Elapsed milliseconds: ", timer.ElapsedMilliseconds());
    const std::wstring status = QueryInfo(request.Get(), HTTP_QUERY_STATUS_CODE, L"Can't get status.");
    const std::wstring statusText = QueryInfo(request.Get(), HTTP_QUERY_STATUS_TEXT, L"Can't get data.");
    WriteLog(ToInteger(status) >= HTTP_STATUS_BAD_REQUEST ? LogWarning : LogTrace, L"Status: ", status, L' ',
             statusText);
    const std::string response = ReadResponse(request);
    if (request.IsExpired())
        throw std::runtime_error("The service took too long to answer.");
    result = FromUtf8(response);
    WriteLog(LogTrace, L"Result: ", result);
    WriteLog(LogTrace, L"Successfully sent data.");
}

void WebService::Send(void* request)
{
    std::wstring headers;
    std::string bytes;
    if (!body.empty()) {
        bytes = ToUtf8(body);
        headers = HeaderTemplate;
        ReplaceAll(headers, L"^content_type", contentType);
        headers += std::to_wstring(bytes.size());
        LogHeaders(headers);
    }
    if (!HttpSendRequestW(request, headers.empty() ? nullptr : headers.c_str(),
                          static_cast<DWORD>(headers.size()), bytes.empty() ? nullptr : bytes.data(),
                          static_cast<DWORD>(bytes.size()))) {
        WriteLog(LogError, L"Can't send Internet request. Error: ", GetLastError());
        throw std::runtime_error("Can't send Internet request.");
    }
}

void WebService::SetPlaceholder(const wchar_t* placeholder, const std::wstring& text)
{
    ReplaceAll(body, placeholder, text);
}

std::wstring WebService::PathText(const std::wstring& text)
{
    constexpr const wchar_t* Digits = L"0123456789ABCDEF";
    std::wstring encoded;
    for (const wchar_t character : text) {
        if (character < 0x21 || character == 0x7F) {
            encoded += L'%';
            encoded += Digits[character / 16];
            encoded += Digits[character % 16];
        } else {
            encoded += character;
        }
    }
    return encoded;
}

}  // namespace kel
