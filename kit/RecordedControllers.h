#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kit/DeviceMasks.h"

namespace kel::kit {

/// What the Setup API answers about controllers of disks, as lines of tests/machines; without a controller
/// there are none.
/// @return nullopt for a controller without a hardware id, which the lines cannot hold
std::optional<std::vector<std::string>> RecordControllers(DeviceMasks& masks);

}  // namespace kel::kit
