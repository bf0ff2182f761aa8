#pragma once

#include <windows.h>

#include <powrprof.h>

#include "detectors/Component.h"

namespace kel {

/// Whether the machine has a battery that is not a short-term one, such as an uninterruptible supply's.
/// @param getCapabilities `GetPwrCapabilities` as found; null gives false, and so does a call that fails
bool HasLongTermBattery(decltype(&GetPwrCapabilities) getCapabilities);

/// The detector of the chassis: whether the machine has a long-term battery, that is, is portable.
/// Read through `GetPwrCapabilities`.
class Chassis : public Component {
public:
    bool Detect() override;
};

}  // namespace kel
