#include "service/InternetHandles.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace kel {

namespace {

constexpr const wchar_t* Agent = L"KEL";
constexpr int QuickRedirects = 10;
constexpr DWORD FirstPause = 100;       // milliseconds
constexpr DWORD LongestPause = 60'000;  // milliseconds

}  // namespace

HINTERNET InternetHandles::OpenSession()
{
    const HINTERNET session = Keep(InternetOpenW(Agent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    if (session != nullptr)
        InternetSetStatusCallbackW(session, &SlowDownRedirects);
    return session;
}

void InternetHandles::LimitWaits(HINTERNET handle, std::chrono::milliseconds limit)
{
    auto milliseconds = static_cast<DWORD>(limit.count());
    for (const DWORD option : std::initializer_list<DWORD>{
             INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_SEND_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT})
        InternetSetOptionW(handle, option, &milliseconds, sizeof(milliseconds));
}

void CALLBACK InternetHandles::SlowDownRedirects(HINTERNET, DWORD_PTR context, DWORD status, LPVOID, DWORD)
{
    if (status != INTERNET_STATUS_REDIRECT)
        return;
    const int late = ++reinterpret_cast<InternetHandles*>(context)->redirects - QuickRedirects;
    if (late > 0)
        Sleep(std::min(FirstPause << std::min(late - 1, 10), LongestPause));
}

HINTERNET InternetHandles::Keep(HINTERNET opened)
{
    OwnedInternet handle(opened);
    const std::lock_guard lock(guard);
    if (closed || !handle)
        return nullptr;
    handles.push_back(std::move(handle));
    return opened;
}

void InternetHandles::CloseAll() noexcept
{
    std::vector<OwnedInternet> closing;
    {
        const std::lock_guard lock(guard);
        closed = true;
        closing.swap(handles);
    }
    while (!closing.empty())
        closing.pop_back();
}

bool InternetHandles::AreClosed() const
{
    const std::lock_guard lock(guard);
    return closed;
}

}  // namespace kel
