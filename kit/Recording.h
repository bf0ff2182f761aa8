#pragma once

#include <string>

#include "verdict/files/Snapshot.h"

namespace kel::kit {

/// This machine as a file of tests/machines: what the system answers, and the values that the product made of
/// it. Processor, memory, firmware, board, chassis and operating system; no other device. Only ASCII.
/// @param snapshot the machine's values
std::string RecordMachine(const Snapshot& snapshot);

}  // namespace kel::kit
