#include "platform/WindowsVersion.h"

#include "platform/Library.h"

namespace kel {

std::optional<OSVERSIONINFOEXW> ReadWindowsVersion()
{
    auto* const get = FindLoadedFunction<LONG WINAPI(OSVERSIONINFOEXW*)>(L"ntdll.dll", "RtlGetVersion");
    OSVERSIONINFOEXW version = {};
    version.dwOSVersionInfoSize = sizeof(version);
    if (get == nullptr || get(&version) < 0)
        return {};
    return version;
}

}  // namespace kel
