// The shorter answers of a disk, read from their bytes.
#pragma once

#include <vector>

#include "probes/ByteSpan.h"

namespace kel {

/// Reads the answer to StorageDeviceSeekPenaltyProperty or StorageDeviceTrimProperty: whether seeks cost
/// time, or whether the disk is told of what is deleted. Nothing for an answer that is cut.
std::optional<bool> ReadStorageFlag(Bytes answer);

/// The size of a disk, and whether its geometry is a floppy's.
struct DiskGeometry {
    std::uint64_t bytes = 0;
    bool isFloppy = false;
};

/// Reads the answer to IOCTL_DISK_GET_DRIVE_GEOMETRY_EX; nothing when it is cut, or the size negative.
std::optional<DiskGeometry> ReadDiskGeometry(Bytes answer);

/// The number of a device among those of its type (FILE_DEVICE_...).
struct DeviceNumber {
    std::uint32_t type = 0;
    std::uint32_t number = 0;
};

/// Reads the answer to IOCTL_STORAGE_GET_DEVICE_NUMBER; nothing when it is cut, or the device without a
/// number.
std::optional<DeviceNumber> ReadDeviceNumber(Bytes answer);

/// What can leave a machine that runs.
struct Hotplug {
    bool medium = false;
    bool device = false;
};

/// Reads the answer to IOCTL_STORAGE_GET_HOTPLUG_INFO; nothing when it is cut.
std::optional<Hotplug> ReadHotplug(Bytes answer);

/// Reads the answer to IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS.
/// @return the disk numbers of all extents that the answer holds, however many it claims
std::vector<std::uint32_t> ReadExtentDisks(Bytes answer);

}  // namespace kel
