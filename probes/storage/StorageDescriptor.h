#pragma once

#include <cstdint>
#include <string>

#include "probes/ByteSpan.h"

namespace kel {

/// A storage device's description of itself (STORAGE_DEVICE_DESCRIPTOR), without its serial number.
struct StorageDescriptor {
    std::wstring vendor;
    std::wstring product;
    std::wstring revision;
    bool isRemovable = false;  ///< the medium
    std::uint32_t bus = 0;     ///< a STORAGE_BUS_TYPE
};

/// Reads the answer to StorageDeviceProperty. A text that is blank or lies outside the answer is empty.
/// @return nullopt for an answer without its fixed part
std::optional<StorageDescriptor> ReadStorageDescriptor(Bytes answer);

/// The name of a STORAGE_BUS_TYPE such as "NVMe"; empty for an unknown one.
std::wstring GetBusName(std::uint32_t bus);

/// Whether a disk on a bus is made of a file, as a mounted image is. A storage space is not: Windows lists it
/// in place of its disks.
bool IsVirtualBus(std::uint32_t bus);

/// Whether a disk has no moving parts, by its seek penalty or its bus. Behind a bridge or a RAID controller
/// it can be unknown.
/// @param seekPenalty whether seeks cost time; nullopt when unknown
std::optional<bool> IsSolidState(std::uint32_t bus, std::optional<bool> seekPenalty);

/// Whether a disk is removable while the machine runs: its medium, or the disk with its cable. A hot-plug
/// SATA port does not make its disk removable.
/// @param canUnplug whether the system allows removal without preparation
bool IsRemovableDisk(std::uint32_t bus, bool hasRemovableMedium, bool canUnplug);

}  // namespace kel
