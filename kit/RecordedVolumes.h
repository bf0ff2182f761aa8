#pragma once

#include <string>
#include <vector>

#include "probes/storage/Volumes.h"

namespace kel::kit {

/// What the system answers about its drive letters, as lines of tests/machines. A path or a share that a
/// letter leads to is not recorded, only that it does, nor the profile's folder, only its letter. None where
/// something cannot be read, which leaves warnings in the log.
std::vector<std::string> RecordVolumes(const VolumeFunctions& functions);

}  // namespace kel::kit
