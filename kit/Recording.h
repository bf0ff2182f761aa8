#pragma once

#include <string>

#include "verdict/files/Snapshot.h"

namespace kel::kit {

/// This machine as a file of tests/machines: what the system answers, and the values that the product made of
/// it. Cameras, Bluetooth and software are not recorded, nor what takes loading a graphics driver, except a
/// version that DXGI alone has. UTF-8, without serial numbers, addresses or names of people.
/// @param snapshot the machine's values
std::string RecordMachine(const Snapshot& snapshot);

}  // namespace kel::kit
