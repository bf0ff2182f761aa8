#pragma once

#include <string>
#include <vector>

#include "verdict/files/Snapshot.h"

namespace kel::kit {

/// What the system answers to the probes of processor, memory, firmware, board, chassis and system, as lines
/// of tests/machines, whose README lists the words.
/// @param snapshot the machine's values, for what is measured and rounded
std::vector<std::string> RecordSystem(const Snapshot& snapshot);

}  // namespace kel::kit
