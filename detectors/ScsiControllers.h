#pragma once

#include <vector>

#include "probes/ScsiInfo.h"

namespace kel {

/// The controllers of this machine, listed once in the process for all who ask.
const std::vector<ScsiInfo>& GetScsiControllers();

}  // namespace kel
