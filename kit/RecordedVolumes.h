#pragma once

#include <string>
#include <vector>

#include "verdict/files/Snapshot.h"

namespace kel::kit {

/// What the system answers about its drive letters, as lines of tests/machines. A path or a share that a
/// letter leads to is not recorded, only that it does. None where a volume's kind follows from its disk, as
/// disks are not recorded, or where something cannot be read, which leaves warnings in the log.
/// @param snapshot the machine's values, with the kinds
std::vector<std::string> RecordVolumes(const Snapshot& snapshot);

}  // namespace kel::kit
