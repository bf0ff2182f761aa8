#pragma once

#include <vector>

#include "detectors/Facts.h"
#include "probes/storage/OpticalInfo.h"
#include "probes/storage/StorageFunctions.h"

namespace kel {

/// The facts of each optical drive. Id and media type are there to be merged.
inline constexpr FactTable OpticalFacts(Fact{72102, &OpticalInfo::name, L"name"},
                                        Fact{72103, &OpticalInfo::deviceId, L"device id"},
                                        Fact{72104, &OpticalInfo::drive, L"letter"},
                                        Fact{72105, &OpticalInfo::writesCds},
                                        Fact{72106, &OpticalInfo::isVirtual},
                                        Fact{NotStored, &OpticalInfo::instanceId},
                                        Fact{NotStored, &OpticalInfo::mediaType});
using OpticalDrive = decltype(OpticalFacts)::Device;

/// Whether a drive has a tray of its own, and shows no image.
inline bool IsRealDrive(const OpticalDrive& drive)
{
    return !drive.record.isVirtual.value_or(false);
}

/// Lists the optical drives, real ones first, from the Setup API, WMI and the storage functions. Devices are
/// listed, not volumes: an empty drive has none.
std::vector<OpticalDrive> ListOpticalDrives(const StorageFunctions& functions);

/// The drives of this machine, listed once in the process for all who ask.
const std::vector<OpticalDrive>& GetOpticalDrives();

}  // namespace kel
