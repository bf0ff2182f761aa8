#pragma once

#include "values/DeviceID.h"
#include "values/Name.h"
#include "values/Size.h"

namespace kel {

/// What one source says about a graphics adapter; an empty text is unknown.
struct GpuInfo {
    Name description;
    Name driverVersion;
    Name chipType;
    Name dacType;
    Name driverDescription;
    Size videoMemory;
    DeviceID deviceId;
};

}  // namespace kel
