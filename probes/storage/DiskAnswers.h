// Readers of a disk's shorter answers.
#pragma once

#include <vector>

#include "probes/ByteSpan.h"

namespace kel {

/// Reads the answer to StorageDeviceSeekPenaltyProperty or StorageDeviceTrimProperty: whether seeks cost
/// time, or whether the disk supports TRIM. Nullopt for a truncated answer.
std::optional<bool> ReadStorageFlag(Bytes answer);

/// The size of a disk, and whether its geometry is a floppy's.
struct DiskGeometry {
    std::uint64_t bytes = 0;
    bool isFloppy = false;
};

/// Reads the answer to IOCTL_DISK_GET_DRIVE_GEOMETRY_EX; nullopt when it is truncated or the size is
/// negative.
std::optional<DiskGeometry> ReadDiskGeometry(Bytes answer);

/// The number of a device among those of its type (FILE_DEVICE_...).
struct DeviceNumber {
    std::uint32_t type = 0;
    std::uint32_t number = 0;
};

/// Reads the answer to IOCTL_STORAGE_GET_DEVICE_NUMBER; nullopt when it is truncated, or the device has no
/// number.
std::optional<DeviceNumber> ReadDeviceNumber(Bytes answer);

/// Which parts of a drive can be removed while the machine runs.
struct Hotplug {
    bool medium = false;
    bool device = false;
};

/// Reads the answer to IOCTL_STORAGE_GET_HOTPLUG_INFO; nullopt when it is truncated.
std::optional<Hotplug> ReadHotplug(Bytes answer);

/// Reads the answer to IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS.
/// @return the disk numbers of all extents that the answer holds, however many it claims
std::vector<std::uint32_t> ReadExtentDisks(Bytes answer);

}  // namespace kel
