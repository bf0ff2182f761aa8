#include "service/WebService.h"

#include <windows.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>

#include "diag/Log.h"
#include "diag/LogScope.h"
#include "run/store/FixedGroups.h"
#include "run/store/Session.h"
#include "service/CallBudget.h"
#include "service/HttpExchange.h"
#include "service/InternetError.h"
#include "service/Proxy.h"
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

/// A path without the key, which every client has, but which belongs into no log.
std::wstring WithoutKey(std::wstring path)
{
    constexpr std::wstring_view Parameter = L"apikey=";
    const std::size_t start = path.find(Parameter);
    if (start != std::wstring::npos)
        path.erase(start - 1, path.find(L'&', start) - start + 1);
    return path;
}

}  // namespace

WebService::WebService(const wchar_t* requestVerb, std::wstring requestPath, std::wstring requestBody)
    : host(ServiceHost()),
      isSecure(IsServiceSecure()),
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
        if (hasBegun || !state.empty())
            Session::Current().Values().AddValue(ExchangeStateGroup, state);
    } catch (...) {
        ReportFailure(LogError, L"The request to the analysis service failed.");
    }
}

bool WebService::IsAnswered() const
{
    return state == ExchangeState::UnknownProduct || (state == ExchangeState::Answered && !isError);
}

void WebService::Exchange()
{
    HttpRequest request{host, verb, path, L"", ToUtf8(body), isSecure};
    const std::wstring what = Describe();
    WriteLog(LogTrace, L"Request: ", what);
    if (!request.body.empty()) {
        request.headers = HeaderTemplate;
        ReplaceAll(request.headers, L"^content_type", contentType);
        request.headers += std::to_wstring(request.body.size());
        LogHeaders(request.headers);
    }
    state =
        ExchangeState::NotReached(ERROR_NOT_ENOUGH_MEMORY);  // the only failure without a state of its own
    try {
        result = FromUtf8(Ask(std::move(request)));
    } catch (...) {
        WriteLog(LogError, L"The request has failed: ", what, L": ", state, errorText);
        throw;
    }
    WriteLog(LogTrace, L"Result: ", result);
    WriteLog(LogTrace, L"Successfully sent data.");
}

/// The body of the answer.
/// @throws std::runtime_error when there is no valid one, ExchangeNotStarted among them
std::string WebService::Ask(HttpRequest request)
{
    const auto answer = std::make_shared<HttpAnswer>();
    CallBudget& budget = CallBudget::Current();
    const char* late = nullptr;
    try {
        late = budget.Run([request = std::move(request), answer](InternetSession& internet) mutable {
            Perform(request, internet, *answer);
        });
    } catch (const ExchangeNotStarted&) {
        EndUnreached(ERROR_INTERNET_OUT_OF_HANDLES);
        throw;
    } catch (...) {
        EndUnreached(answer->openError);
        throw;
    }
    if (late != nullptr) {
        if (late == ExchangeStage::Reading)
            End(ExchangeState::Cut);
        else
            EndUnreached(ERROR_INTERNET_TIMEOUT);
        throw std::runtime_error(std::string(TookTooLong) + late);
    }
    if (answer->lateIn != nullptr)
        budget.End(answer->lateIn);
    if (answer->sendError != ERROR_SUCCESS) {
        if (answer->lateIn != nullptr)
            WriteLog(LogError, TookTooLong, answer->lateIn);
        EndUnreached(answer->sendError);
        WriteLog(LogError, L"Can't send Internet request. Error: ", answer->sendError);
        throw std::runtime_error("Can't send Internet request.");
    }
    End(ExchangeState::Of(*answer, FormOf(answer->body)));
    isError = answer->IsError();
    WriteLog(LogTrace, L"Elapsed milliseconds: ", answer->timer.ElapsedMilliseconds());
    answer->LogStatus();
    if (answer->failure != nullptr)
        throw std::runtime_error(answer->failure);
    return std::move(answer->body);
}

void WebService::End(const wchar_t* newState)
{
    state = newState;
    errorText.clear();
}

void WebService::EndUnreached(DWORD error)
{
    state = ExchangeState::NotReached(error);
    const std::wstring text = InternetErrorText(error);
    errorText = text.empty() ? L"" : L", " + text;
}

std::wstring WebService::Describe() const
{
    std::wstring text = verb;
    text += isSecure ? L" https://" : L" ";
    text += host;
    text += WithoutKey(path);
    text += L", proxy ";
    text += DescribeProxy();
    return text;
}

void WebService::SetPlaceholder(const wchar_t* placeholder, const std::wstring& text)
{
    ReplaceAll(body, placeholder, text);
}

}  // namespace kel
