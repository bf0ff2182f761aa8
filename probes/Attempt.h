#pragma once

#include "diag/Log.h"
#include "diag/SourceFailures.h"

namespace kel {

/// Runs an operation of a probe. An exception is caught and logged as one error line, so that the detector
/// keeps the facts of its other sources.
/// @return whether the operation completed
template <typename Body>
bool Attempt(const wchar_t* errorLine, Body body) noexcept
{
    try {
        body();
        return true;
    } catch (...) {
        ReportFailure(LogError, errorLine);
        FailureScope::NoteException();
        return false;
    }
}

}  // namespace kel
