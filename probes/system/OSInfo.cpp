#include "probes/system/OSInfo.h"

#include <cwchar>

#include "diag/SourceFailures.h"
#include "platform/Library.h"
#include "platform/WindowsVersion.h"
#include "probes/system/ProcessToken.h"

namespace kel {

namespace {

static_assert(sizeof(OSVERSIONINFOEXW) == 284);

template <typename Function>
Function* KernelFunction(const char* name)
{
    return FindLoadedFunction<Function>(L"kernel32.dll", name);
}

/// The function as a function object; empty when it is missing.
template <typename Object, typename Function>
Object Wrap(Function* function)
{
    return function != nullptr ? Object(function) : Object();
}

BOOL GetVersion(OSVERSIONINFOEXW& version)
{
    // Deprecated, but the service expects its answers for newer releases.
    return GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&version));
}

}  // namespace

OSFunctions OSFunctions::OfSystem()
{
    OSFunctions functions;
    functions.getVersion = &GetVersion;
    functions.getSystemMetrics = &GetSystemMetrics;
    if (auto* const getInfo = KernelFunction<void WINAPI(SYSTEM_INFO*)>("GetNativeSystemInfo"))
        functions.getNativeSystemInfo = [getInfo](SYSTEM_INFO& system) { getInfo(&system); };
    functions.getProductInfo = Wrap<decltype(functions.getProductInfo)>(
        KernelFunction<BOOL WINAPI(DWORD, DWORD, DWORD, DWORD, DWORD*)>("GetProductInfo"));
    functions.isWow64Process = Wrap<decltype(functions.isWow64Process)>(
        KernelFunction<BOOL WINAPI(HANDLE, BOOL*)>("IsWow64Process"));
    functions.getUserDefaultLCID = &GetUserDefaultLCID;
    functions.getTrueVersion = &ReadWindowsVersion;
    functions.isWow64Process2 = Wrap<decltype(functions.isWow64Process2)>(
        KernelFunction<BOOL WINAPI(HANDLE, USHORT*, USHORT*)>("IsWow64Process2"));
    functions.getElevation = &ReadElevation;
    functions.getAdministrators = &ReadAdministrators;
    return functions;
}

OSInfo ReadOSInfo(const OSFunctions& functions)
{
    OSInfo info;
    OSVERSIONINFOEXW version = {};
    version.dwOSVersionInfoSize = sizeof(version);
    info.hasVersion = functions.getVersion(version) != FALSE;
    if (!info.hasVersion) {
        FailureScope::Note(L"GetVersionExW", GetLastError());
        return info;
    }
    info.platform = version.dwPlatformId;
    info.major = version.dwMajorVersion;
    info.minor = version.dwMinorVersion;
    info.build = version.dwBuildNumber;
    info.servicePack.assign(version.szCSDVersion,
                            wcsnlen(version.szCSDVersion, std::size(version.szCSDVersion)));
    info.servicePackMajor = version.wServicePackMajor;
    info.servicePackMinor = version.wServicePackMinor;
    info.suiteMask = version.wSuiteMask;
    info.productType = version.wProductType;

    SYSTEM_INFO system = {};
    if (functions.getNativeSystemInfo)
        functions.getNativeSystemInfo(system);
    else
        GetSystemInfo(&system);
    info.architecture = system.wProcessorArchitecture;
    if (info.major == 6 && functions.getProductInfo)
        functions.getProductInfo(info.major, info.minor, 0, 0, &info.edition);
    info.isServerR2 = functions.getSystemMetrics(SM_SERVERR2) != 0;
    info.locale = functions.getUserDefaultLCID();
    return info;
}

Emulation ReadEmulation(const OSFunctions& functions)
{
    BOOL isEmulated = FALSE;
    if (functions.isWow64Process && !functions.isWow64Process(GetCurrentProcess(), &isEmulated))
        return Emulation::Unknown;
    return isEmulated ? Emulation::Yes : Emulation::No;
}

}  // namespace kel
