#pragma once

#include <string>

namespace kel {

/// Traces the extent of a function: "Entering: " and "Exiting: " lines at level 4, and one step of
/// indentation for what is written between them.
class LogScope {
public:
    /// A scope whose line cannot be written is not traced.
    /// @param scopeName the qualified name of the function
    /// @param isActive whether to trace at all; see Tracing()
    LogScope(const wchar_t* scopeName, bool isActive) noexcept;
    LogScope(const LogScope&) = delete;
    LogScope& operator=(const LogScope&) = delete;
    ~LogScope();

    /// Whether scopes are traced now.
    static bool Tracing();

private:
    bool active = false;
    std::wstring name;
};

}  // namespace kel
