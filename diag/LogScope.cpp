#include "diag/LogScope.h"

#include "diag/Log.h"

namespace kel {

LogScope::LogScope(const wchar_t* scopeName, bool isActive)
    : active(isActive), name(isActive ? scopeName : L"")
{
    if (!active)
        return;
    WriteLog(LogMark, L"Entering: ", name);
    Log::Instance().Enter();
}

LogScope::~LogScope()
{
    if (!active)
        return;
    Log& log = Log::Instance();
    log.Exit();
    try {
        // The level may have fallen since; an entry line still gets its exit line.
        log.WriteAlways(LogMark, L"Exiting: ", name);
    } catch (...) {
        // Nothing can be reported from here, least of all to the log.
    }
}

bool LogScope::Tracing()
{
    return Log::Instance().IsEnabled(LogMark);
}

}  // namespace kel
