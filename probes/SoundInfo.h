#pragma once

#include "values/Name.h"

namespace kel {

/// What one source says about a sound device; an empty text is unknown.
struct SoundInfo {
    Name name;
    Name deviceId;  ///< hardware id, or the device id of WMI
    Name driverVersion;
};

}  // namespace kel
