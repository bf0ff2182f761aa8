#pragma once

#include <optional>
#include <string>
#include <vector>

#include "diag/SourceFailures.h"
#include "values/DeviceID.h"
#include "values/Name.h"
#include "values/Version.h"

namespace kel {

/// One source's facts about a sound device; an empty text is unknown.
struct SoundInfo {
    Name name;
    std::wstring instanceId;  ///< in upper case; distinguishes equal devices, and can hold a serial number
    DeviceID deviceId;
    std::optional<Version> driverVersion;
    bool isOff = false;                   ///< switched off, or the system reports a problem with it
    std::optional<bool> servesDefault;    ///< the default output is one of its endpoints
    std::vector<SourceFailure> failures;  ///< why its facts are incomplete

    /// Whether its friendly name may be one that its owner chose, as with Bluetooth devices.
    bool HasChosenName() const { return instanceId.starts_with(L"BTH"); }
};

}  // namespace kel
