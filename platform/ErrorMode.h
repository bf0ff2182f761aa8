#pragma once

#include <windows.h>

namespace kel {

/// While it exists, the system shows no error box in this thread, as for a drive without a medium or a
/// library that cannot be loaded. The destructor restores the thread's error mode.
class ErrorMode {
public:
    ErrorMode() noexcept
    {
        isSet = SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previous) != FALSE;
    }
    ErrorMode(const ErrorMode&) = delete;
    ErrorMode& operator=(const ErrorMode&) = delete;
    ~ErrorMode()
    {
        if (isSet)
            SetThreadErrorMode(previous, nullptr);
    }

private:
    DWORD previous = 0;
    bool isSet = false;
};

}  // namespace kel
