#pragma once

#include <vector>

#include "probes/storage/DiskInfo.h"
#include "probes/storage/StorageFunctions.h"

namespace kel {

/// Asks each disk that Windows lists for model, capacity, bus, kind and firmware. Disks are opened without
/// access rights, so that none is woken or read; the capacity of a sleeping disk is not read. A disk that
/// cannot be opened has only its number, with a warning in the log; one that was removed meanwhile is left
/// out.
std::vector<DiskInfo> ListDisks(const StorageFunctions& functions);

/// The disk number of a disk that the Setup API lists; nullopt when the disk does not answer.
std::optional<std::int32_t> ReadDiskNumber(const StorageFunctions& functions, const std::wstring& instanceId);

/// The numbers of the disks that hold the volume of a letter, such as "C:": several for a spanned volume,
/// none when they are unknown. The volume is opened without access rights.
std::vector<std::int32_t> ReadVolumeDisks(const StorageFunctions& functions, const std::wstring& letter);

/// The numbers of the disks that hold the volume of Windows: several for a spanned volume, none when they are
/// unknown.
std::vector<std::int32_t> ReadWindowsDisks(const StorageFunctions& functions);

}  // namespace kel
