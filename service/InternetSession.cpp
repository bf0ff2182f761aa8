#include "service/InternetSession.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>

#include "service/ExchangeLimits.h"

namespace kel {

namespace {

constexpr const wchar_t* Agent = L"KEL";
constexpr DWORD FirstPause = 100;   // milliseconds
constexpr DWORD MaxPause = 60'000;  // milliseconds
/// How far the tick count may lag behind.
constexpr std::chrono::milliseconds TickLag{50};

}  // namespace

HINTERNET InternetSession::Open()
{
    const HINTERNET session = Keep(InternetOpenW(Agent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    if (session != nullptr)
        InternetSetStatusCallbackW(session, &Follow);
    return session;
}

void InternetSession::LimitWaits(HINTERNET handle, std::chrono::milliseconds limit)
{
    waitLimit = limit;
    auto milliseconds = static_cast<DWORD>(limit.count());
    for (const DWORD option : std::initializer_list<DWORD>{
             INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_SEND_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT})
        InternetSetOptionW(handle, option, &milliseconds, sizeof(milliseconds));
}

void InternetSession::SuppressLogon(HINTERNET request)
{
    InternetSetOptionW(request, INTERNET_OPTION_SUPPRESS_SERVER_AUTH, nullptr, 0);
}

HINTERNET InternetSession::Keep(HINTERNET opened)
{
    OwnedInternet handle(opened);
    if (isAbandoned || !handle)
        return nullptr;
    handles.push_back(std::move(handle));
    return opened;
}

void InternetSession::Close() noexcept
{
    while (!handles.empty())
        handles.pop_back();
}

void InternetSession::Enter(const char* newStage)
{
    stage = newStage;
    stageStart = GetTickCount64();
}

bool InternetSession::HasWaitedTooLong(DWORD error) const
{
    return error == ERROR_INTERNET_TIMEOUT ||
           std::chrono::milliseconds(GetTickCount64() - stageStart) >= waitLimit - TickLag;
}

std::optional<std::wstring> InternetSession::QueryInfo(HINTERNET request, DWORD what)
{
    std::array<wchar_t, 256> text = {};
    DWORD size = sizeof(text) - sizeof(wchar_t);
    if (HttpQueryInfoW(request, what, text.data(), &size, nullptr))
        return text.data();
    return {};
}

bool InternetSession::IsWhole(HINTERNET request, std::uint64_t length)
{
    DWORD announced = 0;
    DWORD size = sizeof(announced);
    return !HttpQueryInfoW(request, HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER, &announced, &size,
                           nullptr) ||
           length == announced;
}

void CALLBACK InternetSession::Follow(HINTERNET, DWORD_PTR context, DWORD status, LPVOID information, DWORD)
{
    auto& session = *reinterpret_cast<InternetSession*>(context);
    switch (status) {
        case INTERNET_STATUS_HANDLE_CREATED:
            // Where one call makes a request and sends it, this is the only moment in between.
            SuppressLogon(
                reinterpret_cast<HINTERNET>(static_cast<INTERNET_ASYNC_RESULT*>(information)->dwResult));
            break;
        case INTERNET_STATUS_RESOLVING_NAME:
        case INTERNET_STATUS_CONNECTING_TO_SERVER:
            session.Enter(ExchangeStage::Opening);
            break;
        case INTERNET_STATUS_SENDING_REQUEST:
            session.Enter(ExchangeStage::Sending);
            break;
        case INTERNET_STATUS_REQUEST_SENT:
            session.Enter(ExchangeStage::WaitingForHeaders);
            break;
        case INTERNET_STATUS_REDIRECT:
            session.SlowDownRedirect();
            break;
        default:
            break;
    }
}

void InternetSession::SlowDownRedirect()
{
    const int late = ++redirects - ExchangeLimits::QuickRedirects;
    if (late > 0)
        Sleep(std::min(FirstPause << std::min(late - 1, 10), MaxPause));
}

}  // namespace kel
