#include "probes/system/Memory.h"

#include "platform/Library.h"

namespace kel {

static_assert(sizeof(MEMORYSTATUSEX) == 64);
static_assert(sizeof(MEMORYSTATUS) == 56, "the control is a 64-bit program");

MemoryInfo ReadMemory(decltype(&GlobalMemoryStatusEx) statusEx)
{
    if (statusEx != nullptr) {
        MEMORYSTATUSEX status = {};
        status.dwLength = sizeof(status);
        statusEx(&status);
        return {Size(status.ullTotalPhys), Size(status.ullTotalVirtual), Size(status.ullAvailPhys), {}};
    }
    MEMORYSTATUS status = {};
    status.dwLength = sizeof(status);
    GlobalMemoryStatus(&status);
    return {Size(status.dwTotalPhys), Size(status.dwTotalVirtual), Size(status.dwAvailPhys), {}};
}

MemoryInfo ReadMemory()
{
    return ReadMemory(
        FindLoadedFunction<decltype(GlobalMemoryStatusEx)>(L"kernel32.dll", "GlobalMemoryStatusEx"));
}

}  // namespace kel
