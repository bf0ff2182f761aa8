#pragma once

#include <vector>

#include "detectors/Facts.h"
#include "detectors/ListedOnce.h"
#include "probes/storage/OpticalInfo.h"
#include "probes/storage/StorageFunctions.h"

namespace kel {

/// The facts of each optical drive. Instance id and media type are merged only.
inline constexpr FactTable OpticalFacts(
    Fact{72102, &OpticalInfo::name, L"name"}, Fact{72103, &OpticalInfo::deviceId, L"device id"},
    Fact{72104, &OpticalInfo::drive, L"letter"}, Fact{72105, &OpticalInfo::writesCds},
    Fact{72106, &OpticalInfo::isVirtual}, Fact{NotStored, &OpticalInfo::instanceId},
    Fact{NotStored, &OpticalInfo::isOff}, Fact{NotStored, &OpticalInfo::mediaType});
using OpticalDrive = decltype(OpticalFacts)::Device;

/// Whether a drive is hardware; a virtual one shows an image.
inline bool IsRealDrive(const OpticalDrive& drive)
{
    return !drive.record.isVirtual.value_or(false);
}

/// Lists the optical drives, real ones first, from the Setup API, WMI and the storage functions. Devices are
/// listed, not volumes, as an empty drive has no volume.
std::vector<OpticalDrive> ListOpticalDrives(const StorageFunctions& functions);

using OpticalDrives = ListedOnce<OpticalDrive>;

/// The drives of this machine, listed once in the process.
OpticalDrives& GetOpticalDrives();

}  // namespace kel
