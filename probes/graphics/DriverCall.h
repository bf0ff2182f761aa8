#pragma once

#include <string>

#include "diag/Log.h"
#include "diag/SourceFailures.h"
#include "platform/ErrorMode.h"
#include "probes/Attempt.h"
#include "values/Hexadecimal.h"

namespace kel {

/// Makes a call that may run a graphics driver in this process. The log has a line before the call, in case
/// the driver crashes the host, and one after a call that fails or throws; the caller continues.
/// @param failureLevel the level of the line after a failure: LogTrace where a failure is a normal answer
/// @return the call's result; E_FAIL when it threw
template <typename Call>
HRESULT CallDriver(const std::wstring& function, const std::wstring& adapter, LogLevel failureLevel,
                   Call call)
{
    const std::wstring what = adapter.empty() ? function : function + L" for " + adapter;
    WriteLog(LogTrace, L"Calling ", what);
    HRESULT result = E_FAIL;
    const bool isDone = Attempt((L"Error in " + what).c_str(), [&] {
        const ErrorMode quiet;
        result = call();
    });
    if (isDone && FAILED(result)) {
        WriteLog(failureLevel, what, L" failed with error: ",
                 Hexadecimal(static_cast<std::uint32_t>(result), 8));
        if (failureLevel <= LogWarning)
            FailureScope::Note(what, static_cast<std::uint32_t>(result));
    }
    return result;
}

}  // namespace kel
