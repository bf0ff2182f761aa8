#pragma once

#include <windows.h>

namespace kel {

/// Keeps the system from showing a box in this thread (for a drive without a medium, a library that cannot be
/// loaded), as long as it lives; then the thread's error mode is what it was.
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
