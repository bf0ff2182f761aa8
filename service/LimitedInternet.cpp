#include "service/LimitedInternet.h"

#include <stdexcept>

namespace kel {

LimitedInternet::LimitedInternet(HINTERNET opened, std::chrono::milliseconds limit)
    : handle(opened), timer(CreateThreadpoolTimer(&LimitedInternet::Expire, this, nullptr))
{
    if (!timer) {
        Close();
        throw std::runtime_error("Can't limit the time of an Internet exchange.");
    }
    // Negative: from now, in units of 100 nanoseconds.
    LARGE_INTEGER due;
    due.QuadPart = -static_cast<LONGLONG>(limit.count()) * 10000;
    FILETIME dueTime = {due.LowPart, static_cast<DWORD>(due.HighPart)};
    SetThreadpoolTimer(timer.get(), &dueTime, 0, 0);
}

LimitedInternet::~LimitedInternet()
{
    SetThreadpoolTimer(timer.get(), nullptr, 0, 0);
    WaitForThreadpoolTimerCallbacks(timer.get(), TRUE);
    Close();
}

VOID CALLBACK LimitedInternet::Expire(PTP_CALLBACK_INSTANCE /*instance*/, PVOID context, PTP_TIMER /*timer*/)
{
    static_cast<LimitedInternet*>(context)->Close();
}

void LimitedInternet::Close()
{
    if (isOpen.exchange(false))
        InternetCloseHandle(handle);
}

}  // namespace kel
