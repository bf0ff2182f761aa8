#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kit/DeviceEdges.h"
#include "kit/DeviceMasks.h"

namespace kel::kit {

/// What optical drives, WMI and the Setup API answer about the drives, and their letters, as lines of
/// tests/machines; without a drive there are none. The trays are not moved and media are not read.
/// @return nullopt for a list of profiles that ends too early to be written
std::optional<std::vector<std::string>> RecordOpticalDrives(const StorageFunctions& functions,
                                                            DeviceMasks& masks);

}  // namespace kel::kit
