#pragma once

#include <string>
#include <vector>

#include "kit/DeviceEdges.h"
#include "kit/DeviceMasks.h"

namespace kel::kit {

/// What the Setup API, WMI and the sound service answer about sound devices, as lines of tests/machines.
/// Names of endpoints are not read, since people choose them.
std::vector<std::string> RecordSound(const DeviceEdges& edges, DeviceMasks& masks);

}  // namespace kel::kit
