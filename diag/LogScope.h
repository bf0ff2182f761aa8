#pragma once

#include <string>

#include "diag/Log.h"

namespace kel {

/// Traces the extent of a function: "Entering: " and "Exiting: " lines at level 4, with the lines between
/// them indented by one step.
class LogScope {
public:
    /// A scope whose line cannot be written is not traced.
    /// @param scopeName the qualified name of the function
    /// @param isActive whether to trace at all: when level 4 is written
    explicit LogScope(const wchar_t* scopeName, bool isActive = Log::Instance().IsEnabled(LogMark)) noexcept;
    LogScope(const LogScope&) = delete;
    LogScope& operator=(const LogScope&) = delete;
    ~LogScope();

private:
    bool active = false;
    std::wstring name;
};

}  // namespace kel
