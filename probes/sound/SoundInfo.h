#pragma once

#include <optional>
#include <string>

#include "values/DeviceID.h"
#include "values/Name.h"
#include "values/Version.h"

namespace kel {

/// What one source says about a sound device; an empty text is unknown.
struct SoundInfo {
    Name name;
    std::wstring instanceId;  ///< in upper case; tells equal devices apart, and can hold a serial number
    DeviceID deviceId;
    std::optional<Version> driverVersion;
    std::optional<bool> servesDefault;  ///< the default output is one of its endpoints

    /// Whether its friendly name is one that its owner chose, as Bluetooth devices carry it.
    bool HasChosenName() const { return instanceId.starts_with(L"BTH"); }
};

}  // namespace kel
