#pragma once

#include <vector>

#include "detectors/Facts.h"
#include "detectors/ListedOnce.h"
#include "probes/storage/DiskInfo.h"
#include "probes/storage/StorageFunctions.h"

namespace kel {

/// The facts of each disk.
inline constexpr FactTable DiskFacts(Fact{72502, &DiskInfo::model, L"model"},
                                     Fact{72503, &DiskInfo::deviceId}, Fact{72504, &DiskInfo::capacity},
                                     Fact{72505, &DiskInfo::bus}, Fact{72506, &DiskInfo::isSolidState},
                                     Fact{72507, &DiskInfo::isRemovable}, Fact{72508, &DiskInfo::firmware},
                                     Fact{72509, &DiskInfo::number, L"number"},
                                     Fact{72510, &DiskInfo::holdsWindows},
                                     Fact{NotStored, &DiskInfo::instanceId},
                                     Fact{NotStored, &DiskInfo::isInternal},
                                     Fact{NotStored, &DiskInfo::isVirtual});
using DiskDrive = decltype(DiskFacts)::Device;

/// Lists the disks from the storage functions, WMI and the Setup API, joined by their numbers: those that
/// hold Windows first, then fixed ones. Virtual disks are among them.
std::vector<DiskDrive> ListDiskDrives(const StorageFunctions& functions);

using DiskDrives = ListedOnce<DiskDrive>;

/// The disks of this machine, listed once in the process.
DiskDrives& GetDiskDrives();

/// Whether a disk does not count: one without a medium, a floppy, or a disk made of a file, unless it holds
/// Windows.
bool IsLeftOut(const DiskInfo& disk);

/// The numbers of the disks whose volumes are not fixed ones: removable disks, and those made of a file.
std::vector<std::int32_t> ListLooseDisks(const std::vector<DiskDrive>& drives);

}  // namespace kel
