#include "service/WebService.h"

#include <windows.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>

#include "diag/Log.h"
#include "diag/LogScope.h"
#include "service/CallBudget.h"
#include "service/HttpExchange.h"
#include "service/RunWithin.h"
#include "service/ServiceHost.h"
#include "service/Utf8.h"
#include "values/Text.h"

namespace kel {

namespace {

// The line break is the wrong way round. Kept: the service accepts it.
constexpr const wchar_t* HeaderTemplate = L"Content-Type: ^content_type; charset=utf-8\n\rContent-Length: ";
constexpr const char* TookTooLong = "The service took too long to answer: ";

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

/// The body of the answer.
/// @throws std::runtime_error when there is no valid one, ExchangeNotStarted among them
std::string Ask(HttpRequest request)
{
    const auto answer = std::make_shared<HttpAnswer>();
    CallBudget& budget = CallBudget::Current();
    const char* const late =
        budget.Run([request = std::move(request), answer](InternetSession& internet) mutable {
            Perform(request, internet, *answer);
        });
    if (late != nullptr)
        throw std::runtime_error(std::string(TookTooLong) + late);
    if (answer->lateIn != nullptr)
        budget.End(answer->lateIn);
    if (answer->sendError != ERROR_SUCCESS) {
        if (answer->lateIn != nullptr)
            WriteLog(LogError, TookTooLong, answer->lateIn);
        WriteLog(LogError, L"Can't send Internet request. Error: ", answer->sendError);
        throw std::runtime_error("Can't send Internet request.");
    }
    WriteLog(LogTrace, L"Elapsed milliseconds: ", answer->timer.ElapsedMilliseconds());
    answer->LogStatus();
    if (answer->failure != nullptr)
        throw std::runtime_error(answer->failure);
    return std::move(answer->body);
}

}  // namespace

WebService::WebService(const wchar_t* requestVerb, std::wstring requestPath, std::wstring requestBody)
    : host(ServiceHost()),
      verb(requestVerb),
      path(std::move(requestPath)),
      contentType(L"application/xml"),
      body(std::move(requestBody))
{
}

WebService::~WebService() = default;

void WebService::Call() noexcept
{
    const CallBudget budget;
    hasBegun = CallBudget::Current().EndedIn() == nullptr;
    try {
        const LogScope trace(L"kel::WebService::Call");
        try {
            if (!hasBegun)
                WriteLog(LogWarning, L"Skipped, since an earlier exchange of this call took too long: ",
                         CallBudget::Current().EndedIn());
            else
                Exchange();
        } catch (const ExchangeNotStarted& error) {
            hasBegun = false;
            WriteLog(LogError, error.what());
        } catch (const std::exception& error) {
            WriteLog(LogError, error.what());
        }
    } catch (...) {
        ReportFailure(LogError, L"The request to the analysis service failed.");
    }
}

void WebService::Exchange()
{
    HttpRequest request{host, verb, path, L"", ToUtf8(body)};
    if (!request.body.empty()) {
        request.headers = HeaderTemplate;
        ReplaceAll(request.headers, L"^content_type", contentType);
        request.headers += std::to_wstring(request.body.size());
        LogHeaders(request.headers);
    }
    result = FromUtf8(Ask(std::move(request)));
    WriteLog(LogTrace, L"Result: ", result);
    WriteLog(LogTrace, L"Successfully sent data.");
}

void WebService::SetPlaceholder(const wchar_t* placeholder, const std::wstring& text)
{
    ReplaceAll(body, placeholder, text);
}

}  // namespace kel
