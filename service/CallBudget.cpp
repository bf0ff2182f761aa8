#include "service/CallBudget.h"

#include <windows.h>

#include <utility>

#include "service/RunWithin.h"

namespace kel {

const char* CallBudget::Run(std::function<void(InternetSession&)> exchange)
{
    const ULONGLONG start = GetTickCount64();
    const char* const late = RunWithin(left, std::move(exchange));
    left -= std::chrono::milliseconds(GetTickCount64() - start);
    if (late != nullptr)
        End(late);
    else if (left.count() <= 0)
        End(ExchangeStage::Reading);
    return late;
}

}  // namespace kel
