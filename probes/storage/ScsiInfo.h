#pragma once

#include <optional>
#include <string>
#include <vector>

#include "values/DeviceID.h"
#include "values/Name.h"
#include "values/Version.h"

namespace kel {

/// What one source says about a SCSI or RAID controller; what is empty is unknown.
struct ScsiInfo {
    Name name;
    DeviceID deviceId;
    std::optional<Version> driverVersion;
    std::vector<std::wstring> compatibleIds;  ///< these tell the class of a PCI device
    Name kind;                                ///< "SCSI", "SAS", "RAID", "NVMe" or "virtual"
};

}  // namespace kel
