#include "probes/system/Memory.h"

#include "diag/SourceFailures.h"
#include "platform/Library.h"

namespace kel {

static_assert(sizeof(MEMORYSTATUSEX) == 64);
static_assert(sizeof(MEMORYSTATUS) == 56, "the control is a 64-bit program");

namespace {

MemoryInfo ReadStatus(const MemoryFunctions& functions)
{
    if (functions.status != nullptr) {
        MEMORYSTATUSEX status = {};
        status.dwLength = sizeof(status);
        functions.status(&status);
        return {Size(status.ullTotalPhys), Size(status.ullTotalVirtual), Size(status.ullAvailPhys), {}, {}};
    }
    MEMORYSTATUS status = {};
    status.dwLength = sizeof(status);
    GlobalMemoryStatus(&status);
    return {Size(status.dwTotalPhys), Size(status.dwTotalVirtual), Size(status.dwAvailPhys), {}, {}};
}

}  // namespace

MemoryFunctions MemoryFunctions::OfSystem()
{
    constexpr const wchar_t* Kernel = L"kernel32.dll";
    return {FindLoadedFunction<decltype(GlobalMemoryStatusEx)>(Kernel, "GlobalMemoryStatusEx"),
            FindLoadedFunction<decltype(GetPhysicallyInstalledSystemMemory)>(
                Kernel, "GetPhysicallyInstalledSystemMemory")};
}

MemoryInfo ReadMemory(const MemoryFunctions& functions)
{
    constexpr ULONGLONG Kilobyte = 1024;
    MemoryInfo info = ReadStatus(functions);
    ULONGLONG kilobytes = 0;
    if (functions.getInstalled == nullptr || !functions.getInstalled(&kilobytes))
        FailureScope::Note(L"GetPhysicallyInstalledSystemMemory",
                           functions.getInstalled != nullptr ? GetLastError() : ERROR_PROC_NOT_FOUND);
    else if (kilobytes > 0)
        info.installed = Size(kilobytes * Kilobyte);
    return info;
}

}  // namespace kel
