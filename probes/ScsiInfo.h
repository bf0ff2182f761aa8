#pragma once

#include "values/Name.h"

namespace kel {

/// What one source says about a SCSI or RAID controller; an empty text is unknown.
struct ScsiInfo {
    Name hardwareId;
    Name driverVersion;
};

}  // namespace kel
