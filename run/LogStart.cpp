#include "run/LogStart.h"

#include <windows.h>

#include <algorithm>
#include <memory>
#include <string>

#include "BuildSettings.h"
#include "diag/Log.h"
#include "platform/Library.h"
#include "platform/Policy.h"
#include "run/LogFile.h"
#include "run/LogWriter.h"
#include "service/ServiceHost.h"

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

/// The path of the policy's log file, its variables replaced; empty without one, or for a text that is not
/// the whole path of a file on a drive or a share.
std::wstring LogFilePath()
{
    constexpr DWORD MaxLogPath = 240;
    const std::wstring& text = CurrentPolicy().logFile;
    std::wstring path(MaxLogPath, L'\0');
    const DWORD length = ExpandEnvironmentStringsW(text.c_str(), path.data(), MaxLogPath);
    path.resize(length > 0 && length <= MaxLogPath ? length - 1 : 0);
    const bool isOnDrive = path.size() > 3 && path[1] == L':' && path[2] == L'\\';
    const bool isOnShare = path.size() > 3 && path.starts_with(L"\\\\") && path[2] != L'.' && path[2] != L'?';
    return isOnDrive || isOnShare ? path : std::wstring();
}

/// The policy's log file; null without one.
LogWriter* MakeWriter()
{
    const std::wstring path = LogFilePath();
    if (path.empty())
        return nullptr;
    auto writer =
        std::make_unique<LogWriter>(LogFile(path, CurrentPolicy().logSize), CurrentPolicy().logLevel);
    PinThisModule();  // the thread outlives the last object
    if (!writer->Start())
        return nullptr;
    Log::Instance().SetSink(writer.get());
    return writer.release();
}

LogWriter* Writer()
{
    static LogWriter* const writer = MakeWriter();
    return writer;
}

}  // namespace

void SetLogLevel(int level)
{
    static bool isStarted = false;
    Log& log = Log::Instance();
    log.SetLevel(Writer() != nullptr ? std::max(level, CurrentPolicy().logLevel) : level);
    if (isStarted || !log.IsEnabled(LogError))
        return;
    isStarted = true;
    log.WriteAlways(LogTrace, Today(), L", process ", GetCurrentProcessId(), L' ', ModulePath(nullptr),
                    L", version ", L"" KEL_VERSION_TEXT, L' ', ModulePath(ThisModule()));
    log.WriteAlways(LogTrace, L"service ", DescribeServiceHost());
    if (const std::wstring refused = DescribeRefusedHost(); !refused.empty())
        log.WriteAlways(LogError, refused);
    if (!CurrentPolicy().logFile.empty() && Writer() == nullptr)
        log.WriteAlways(LogError,
                        L"The policy LogFile does not name a file that can be written, and is ignored.");
}

void StartLogFile() noexcept
{
    try {
        if (Writer() != nullptr)
            SetLogLevel(LogOff);
    } catch (...) {
        // Out of memory: the log goes to the debugger alone.
    }
}

void FlushLogFile() noexcept
{
    try {
        if (LogWriter* const writer = Writer())
            writer->Flush();
    } catch (...) {
        // As above.
    }
}

}  // namespace kel
