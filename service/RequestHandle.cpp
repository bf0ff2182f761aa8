#include "service/RequestHandle.h"

#include <stdexcept>

namespace kel {

RequestHandle::RequestHandle(HINTERNET request, std::chrono::milliseconds limit)
    : handle(request), timer(CreateThreadpoolTimer(&RequestHandle::Expire, this, nullptr))
{
    if (!timer) {
        Close();
        throw std::runtime_error("Can't limit the time of the Internet request.");
    }
    // Negative: from now, in units of 100 nanoseconds.
    LARGE_INTEGER due;
    due.QuadPart = -static_cast<LONGLONG>(limit.count()) * 10000;
    FILETIME dueTime = {due.LowPart, static_cast<DWORD>(due.HighPart)};
    SetThreadpoolTimer(timer.get(), &dueTime, 0, 0);
}

RequestHandle::~RequestHandle()
{
    SetThreadpoolTimer(timer.get(), nullptr, 0, 0);
    WaitForThreadpoolTimerCallbacks(timer.get(), TRUE);
    Close();
}

VOID CALLBACK RequestHandle::Expire(PTP_CALLBACK_INSTANCE /*instance*/, PVOID context, PTP_TIMER /*timer*/)
{
    static_cast<RequestHandle*>(context)->Close();
}

void RequestHandle::Close()
{
    if (isOpen.exchange(false))
        InternetCloseHandle(handle);
}

}  // namespace kel
