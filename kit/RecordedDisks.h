#pragma once

#include <string>
#include <vector>

#include "kit/DeviceEdges.h"
#include "kit/DeviceMasks.h"

namespace kel::kit {

/// What disks, WMI and the Setup API answer about the disks, and the disks of Windows, as lines of
/// tests/machines. Disks are opened without access rights.
std::vector<std::string> RecordDisks(const DeviceEdges& edges, DeviceMasks& masks);

}  // namespace kel::kit
