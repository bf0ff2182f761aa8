#include "probes/cpu/SystemCpu.h"

#include <windows.h>

#ifdef _MSC_VER
#include <intrin.h>
#else
#include <x86intrin.h>
#endif

#include <cstdint>
#include <string>

#include "diag/Timer.h"
#include "probes/Attempt.h"

namespace kel {

bool GetSystemCpuInfo(CpuInfo& info)
{
    Attempt(L"Error in system CPU detection.", [&info] {
        SYSTEM_INFO system = {};
        GetSystemInfo(&system);
        info = DescribeProcessors(system.dwNumberOfProcessors, MeasureMegahertz());
    });
    return true;
}

CpuInfo DescribeProcessors(DWORD count, float megahertz)
{
    CpuInfo info;
    info.processorCount = std::to_wstring(count);
    info.multiProcessor = count > 1;
    info.speed.Initialize((std::to_wstring(static_cast<unsigned>(megahertz)) + L" MHz").c_str());
    return info;
}

float MeasureMegahertz()
{
    const std::int64_t frequency = Timer::Frequency();
    if (frequency < 1)
        return 0.0F;
    const std::int64_t start = Timer::ReadCounter();
    std::int64_t now = start;
    const std::uint64_t first = __rdtsc();
    while (now > 0 && now - start < frequency)
        now = Timer::ReadCounter();
    const std::uint64_t last = __rdtsc();
    // The counter goes back when the machine wakes up or the thread moves to a processor that is behind.
    return now > 0 && last > first ? static_cast<float>(last - first) / 1000000.0F : 0.0F;
}

}  // namespace kel
