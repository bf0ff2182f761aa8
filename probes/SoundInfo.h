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
    std::wstring instanceId;  ///< tells equal devices apart, and can hold a serial number or an address
    DeviceID deviceId;
    std::optional<Version> driverVersion;
    std::optional<bool> servesDefault;  ///< the default output is one of its endpoints
};

}  // namespace kel
