#pragma once

#include <windows.h>

#include <powrprof.h>

namespace kel {

/// Whether the machine has a battery that is not a short-term one, such as an uninterruptible supply's.
/// @param getCapabilities `GetPwrCapabilities` as found; null gives false, and so does a call that fails
bool HasLongTermBattery(decltype(&GetPwrCapabilities) getCapabilities);

/// Asks the function in "PowrProf.dll"; false when the library cannot be loaded.
bool HasLongTermBattery();

}  // namespace kel
