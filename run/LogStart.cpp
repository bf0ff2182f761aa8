#include "run/LogStart.h"

#include <windows.h>

#include <string>

#include "BuildSettings.h"
#include "diag/Log.h"
#include "platform/Library.h"

namespace kel {

namespace {

constexpr DWORD MaxModulePath = 32768;

/// The path of a module; that of the program for null.
std::wstring ModulePath(HMODULE module)
{
    std::wstring path(MaxModulePath, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), MaxModulePath));
    return path;
}

std::wstring Today()
{
    constexpr int MaxDateLength = 16;
    std::wstring date(MaxDateLength, L'\0');
    const int length =
        GetDateFormatW(LOCALE_INVARIANT, 0, nullptr, L"yyyy-MM-dd", date.data(), MaxDateLength);
    date.resize(length > 0 ? static_cast<std::size_t>(length) - 1 : 0);
    return date;
}

}  // namespace

void SetLogLevel(int level)
{
    static bool isStarted = false;
    Log& log = Log::Instance();
    log.SetLevel(level);
    if (isStarted || !log.IsEnabled(LogError))
        return;
    isStarted = true;
    log.WriteAlways(LogTrace, Today(), L", process ", GetCurrentProcessId(), L' ', ModulePath(nullptr),
                    L", version ", L"" KEL_VERSION_TEXT, L' ', ModulePath(ThisModule()));
}

}  // namespace kel
