#include "diag/LogScope.h"

namespace kel {

LogScope::LogScope(const wchar_t* scopeName, bool isActive) noexcept
{
    if (!isActive)
        return;
    try {
        name = scopeName;
        WriteLog(LogMark, L"Entering: ", name);
        Log::Instance().Enter();
        active = true;
    } catch (...) {
        // Out of memory; the function runs without its trace.
    }
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

}  // namespace kel
