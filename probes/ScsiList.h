#pragma once

#include <vector>

#include "probes/ScsiInfo.h"

namespace kel {

/// The SCSI and RAID controllers as the Setup API lists them, asked once in the process, for all detectors.
/// Empty when they cannot be listed; then the next caller asks again.
const std::vector<ScsiInfo>& ScsiControllers();

}  // namespace kel
