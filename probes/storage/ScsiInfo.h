#pragma once

#include <optional>
#include <string>
#include <vector>

#include "diag/SourceFailures.h"
#include "values/DeviceID.h"
#include "values/Name.h"
#include "values/Version.h"

namespace kel {

/// One source's facts about a SCSI or RAID controller; empty ones are unknown.
struct ScsiInfo {
    Name name;
    std::wstring instanceId;  ///< can distinguish equal controllers; not stored
    DeviceID deviceId;
    std::optional<Version> driverVersion;
    std::vector<std::wstring> compatibleIds;  ///< they include the class of a PCI device
    Name kind;                                ///< "SCSI", "SAS", "RAID", "NVMe" or "virtual"
    std::vector<SourceFailure> failures;      ///< why its facts are incomplete
};

}  // namespace kel
