#pragma once

#include <windows.h>

#include <powrprof.h>

namespace kel {

/// Whether the machine has a battery that is not a short-term one, such as an uninterruptible supply's.
/// @param getCapabilities `GetPwrCapabilities` as found; null gives false, and so does a call that fails
bool HasLongTermBattery(decltype(&GetPwrCapabilities) getCapabilities);

/// The system's functions for the chassis; a test replaces them.
struct ChassisFunctions {
    decltype(&GetPwrCapabilities) getPowerCapabilities = nullptr;  ///< may be missing
    decltype(&GetSystemMetrics) getSystemMetrics = nullptr;

    /// The system's own. "PowrProf.dll" is loaded and stays loaded.
    static ChassisFunctions OfSystem();
};

}  // namespace kel
