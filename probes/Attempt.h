#pragma once

#include "diag/Log.h"

namespace kel {

/// Runs an operation of a probe. What it throws is logged as one error line and ends here, so that the
/// detector keeps what its other sources say.
/// @return whether the operation came to its end
template <typename Body>
bool Attempt(const wchar_t* errorLine, Body body) noexcept
{
    try {
        body();
        return true;
    } catch (...) {
        ReportFailure(LogError, errorLine);
        return false;
    }
}

}  // namespace kel
