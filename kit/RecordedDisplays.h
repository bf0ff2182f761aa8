#pragma once

#include <string>
#include <vector>

#include "kit/DeviceEdges.h"
#include "kit/DeviceMasks.h"

namespace kel::kit {

/// What the display functions, the Setup API and the registry answer about displays and monitors, as lines of
/// tests/machines. EDIDs are recorded without serial numbers. None when the system lists no display.
std::vector<std::string> RecordDisplays(const DeviceEdges& edges, DeviceMasks& masks);

/// The first 128 bytes of an EDID, without serial number, week and the texts that are not the model's name;
/// empty for one whose sum is wrong.
std::vector<BYTE> WithoutSerial(std::vector<BYTE> edid);

}  // namespace kel::kit
