#pragma once

#include <cstdint>
#include <string>

#include "probes/ByteSpan.h"

namespace kel {

/// What a storage device says of itself (STORAGE_DEVICE_DESCRIPTOR). The serial number, which it says as
/// well, is left alone.
struct StorageDescriptor {
    std::wstring vendor;
    std::wstring product;
    std::wstring revision;
    bool isRemovable = false;  ///< the medium
    std::uint32_t bus = 0;     ///< a STORAGE_BUS_TYPE
};

/// Reads the answer to StorageDeviceProperty. A text that is blank or lies outside the answer is empty.
/// @return nothing for an answer without its fixed part
std::optional<StorageDescriptor> ReadStorageDescriptor(Bytes answer);

/// What a STORAGE_BUS_TYPE is called, such as "NVMe"; empty for one that is not known.
std::wstring GetBusName(std::uint32_t bus);

/// Whether a disk on a bus is made of a file, as a mounted image is. A storage space, which is made of other
/// disks, is what Windows has in their place.
bool IsVirtualBus(std::uint32_t bus);

/// Whether a disk has no moving parts: by what it says of its seeks, or by its bus. A bridge or a RAID
/// controller that does not say leaves it unknown.
/// @param seekPenalty whether seeks cost time; empty when the disk does not say
std::optional<bool> IsSolidState(std::uint32_t bus, std::optional<bool> seekPenalty);

/// Whether a disk can leave while the machine runs: its medium, or the disk with the cable of its bus. That a
/// SATA port takes a change does not make its disk removable.
/// @param canUnplug whether the system lets the device go without asking
bool IsRemovableDisk(std::uint32_t bus, bool hasRemovableMedium, bool canUnplug);

}  // namespace kel
