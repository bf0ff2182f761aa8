#pragma once

#include <vector>

#include "probes/storage/OpticalInfo.h"
#include "probes/storage/StorageFunctions.h"

namespace kel {

/// The path by which the drive with an instance id is opened; empty without an id.
std::wstring MakeOpticalPath(const std::wstring& instanceId);

/// Asks the drive with a path for its list of profiles (IOCTL_CDROM_GET_CONFIGURATION, feature 0), which
/// takes the right to read.
StorageAnswer AskProfiles(const StorageFunctions& functions, const std::wstring& path);

/// Asks an optical drive for its name, letter and abilities. The device is opened, never its volume; the
/// requests work with an empty tray, and neither move it nor read a medium.
/// @param instanceId the drive's id, as the Setup API or WMI has it
/// @param letter the drive's letter, if it is known; used when the instance id does not lead to the device
OpticalInfo ReadOpticalDrive(const StorageFunctions& functions, const std::wstring& instanceId,
                             const std::wstring& letter);

/// Asks all drives that Windows lists as devices. They have no id by which other sources' drives could be
/// matched.
std::vector<OpticalInfo> ListOpticalDevices(const StorageFunctions& functions);

}  // namespace kel
