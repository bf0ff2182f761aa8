#pragma once

#include <vector>

#include "probes/storage/DiskInfo.h"
#include "probes/storage/StorageFunctions.h"

namespace kel {

/// Asks each disk that Windows lists, opened without access rights, so that none is waked or read: model,
/// capacity, bus, kind and firmware. A disk that sleeps is not asked for its capacity. One that cannot be
/// opened has its number alone, with a warning in the log; one that is gone by then is left out.
std::vector<DiskInfo> ListDisks(const StorageFunctions& functions);

/// The disk number of a disk that the Setup API lists; nothing when it does not tell.
std::optional<std::int32_t> ReadDiskNumber(const StorageFunctions& functions, const std::wstring& instanceId);

/// The numbers of the disks on which the volume of Windows lies: several for a spanned one, none when they
/// are not known.
std::vector<std::int32_t> ReadWindowsDisks(const StorageFunctions& functions);

}  // namespace kel
