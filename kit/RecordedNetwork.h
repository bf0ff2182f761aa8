#pragma once

#include <string>
#include <vector>

#include "kit/DeviceEdges.h"
#include "kit/DeviceMasks.h"

namespace kel::kit {

/// What the interface table and the Setup API answer about network adapters, as lines of tests/machines.
/// Interfaces that only a driver makes, as for tunnels, are left out, as they are no adapters and may have
/// names of firms. None when there is no table.
std::vector<std::string> RecordNetwork(const DeviceEdges& edges, DeviceMasks& masks);

}  // namespace kel::kit
