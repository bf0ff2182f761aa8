#pragma once

#include <string>
#include <vector>

#include "kit/DeviceEdges.h"
#include "kit/DeviceMasks.h"

namespace kel::kit {

/// What DXGI, the kernel, the registry's cache and the Setup API answer about graphics adapters, as lines of
/// tests/machines. A driver may be loaded only for a version that no other source has, for which the
/// detectors have loaded it before. None when DXGI lists nothing.
std::vector<std::string> RecordGraphics(const DeviceEdges& edges, DeviceMasks& masks);

}  // namespace kel::kit
