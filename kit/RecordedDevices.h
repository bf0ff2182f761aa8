#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "kit/DeviceEdges.h"
#include "kit/DeviceMasks.h"

namespace kel::kit {

/// What was recorded of the devices.
struct DeviceRecording {
    std::vector<std::string> lines;        ///< of tests/machines
    std::set<std::string_view> detectors;  ///< whose values follow from the lines
};

/// Records graphics adapters, displays, disks, drive letters, optical drives, controllers, network adapters
/// and sound devices.
DeviceRecording RecordDevices(const DeviceEdges& edges, DeviceMasks& masks);

}  // namespace kel::kit
