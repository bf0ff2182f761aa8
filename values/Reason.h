#pragma once

#include <cstdint>
#include <string>

#include "diag/SourceFailures.h"

namespace kel {

/// Why a value is empty or missing.
struct Reason {
    enum class Kind {
        NotThere,        ///< the machine has no such thing, or its sources do not know it
        NotReadable,     ///< a source that may know it could not be read
        NotAskedFor,     ///< it is read only when it is wanted, and was not
        DetectorFailed,  ///< the detector of the value ended with an exception
    };

    Kind kind = Kind::NotThere;
    SourceFailure failure;  ///< of NotReadable

    bool operator==(const Reason& other) const
    {
        return kind == other.kind && failure.source == other.failure.source &&
               failure.error == other.failure.error;
    }

    /// As one sentence, such as "not readable: WMI Win32_BIOS, error 0x80041003". Errors of Windows are in
    /// decimal, HRESULTs in hexadecimal.
    std::wstring ToString() const;
};

}  // namespace kel
