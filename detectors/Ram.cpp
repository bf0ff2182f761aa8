#include "detectors/Ram.h"

#include <windows.h>

#include "diag/Owners.h"
#include "values/Size.h"

namespace kel {

namespace {

constexpr unsigned TotalPhysicalId = 71063;
constexpr unsigned TotalVirtualId = 71381;
constexpr unsigned AvailablePhysicalId = 71382;
constexpr unsigned ReservedId1 = 71174;
constexpr unsigned ReservedId2 = 71175;

static_assert(sizeof(MEMORYSTATUSEX) == 64);
static_assert(sizeof(MEMORYSTATUS) == 56, "the control is a 64-bit program");

}  // namespace

MemoryInfo ReadMemory(decltype(&GlobalMemoryStatusEx) statusEx)
{
    if (statusEx != nullptr) {
        MEMORYSTATUSEX status = {};
        status.dwLength = sizeof(status);
        statusEx(&status);
        return {Size(status.ullTotalPhys), Size(status.ullTotalVirtual), Size(status.ullAvailPhys)};
    }
    MEMORYSTATUS status = {};
    status.dwLength = sizeof(status);
    GlobalMemoryStatus(&status);
    return {Size(status.dwTotalPhys), Size(status.dwTotalVirtual), Size(status.dwAvailPhys)};
}

bool Ram::Detect()
{
    return Guarded(L"kel::Ram::Detect", L"Error in Ram detection.", [] {
        MemoryInfo memory;
        {
            const OwnedLibrary kernel(LoadLibraryW(L"kernel32.dll"));
            if (kernel)
                memory = ReadMemory(
                    FindFunction<decltype(GlobalMemoryStatusEx)>(kernel.get(), "GlobalMemoryStatusEx"));
        }
        AddValue(TotalPhysicalId, memory.totalPhysical);
        AddValue(TotalVirtualId, memory.totalVirtual);
        AddValue(AvailablePhysicalId, memory.availablePhysical);
        AddValue(ReservedId1, std::wstring());
        AddValue(ReservedId2, std::wstring());
    });
}

}  // namespace kel
