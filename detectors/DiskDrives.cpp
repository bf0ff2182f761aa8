#include "detectors/DiskDrives.h"

#include <algorithm>
#include <tuple>

#include "diag/SourceFailures.h"
#include "platform/ErrorMode.h"
#include "probes/setup/SetupLib.h"
#include "probes/storage/DiskModel.h"
#include "probes/storage/Disks.h"
#include "probes/wmi/WMI.h"
#include "values/StableSort.h"

namespace kel {

namespace {

using Disks = std::vector<DiskInfo>;

bool IsSameDisk(const DiskInfo& one, const DiskInfo& other)
{
    return one.number && one.number == other.number;
}

Disks ListWmiDisks()
{
    Disks disks;
    WMI::Instance().GetHardDriveValues(disks);
    for (DiskInfo& disk : disks) {
        disk.model = Name(TidyDiskModel(disk.model.ToString()));
        if (disk.number.value_or(0) < 0)
            disk.number.reset();
    }
    return disks;
}

Disks ListSetupDisks(const StorageFunctions& functions)
{
    Disks disks;
    SetupLib::Instance().GetHardDriveInfo(disks);
    for (DiskInfo& disk : disks) {
        const std::wstring friendly = TidyDiskModel(disk.friendlyName.ToString());
        disk.model = Name(friendly.empty() ? ReadIdeModel(disk.deviceId.ToString()) : friendly);
        disk.number = ReadDiskNumber(functions, disk.instanceId.ToString());
    }
    return disks;
}

/// Clears truncated models that another source has in full.
void DropCutModels(Disks& disks, const Disks& others)
{
    for (DiskInfo& disk : disks) {
        const bool isCut = std::ranges::any_of(others, [&disk](const DiskInfo& other) {
            return IsSameDisk(disk, other) && IsCutModel(disk.model.ToString(), other.model.ToString());
        });
        if (isCut)
            disk.model = Name();
    }
}

/// Merges what a source lists. When the known disks have numbers, a disk without one is dropped: it is one of
/// them, but not known which.
void Add(std::vector<DiskDrive>& drives, Disks listed, const wchar_t* source)
{
    const bool hasNumbers =
        std::ranges::any_of(drives, [](const DiskDrive& drive) { return drive.record.number.has_value(); });
    if (hasNumbers)
        std::erase_if(listed, [](const DiskInfo& disk) { return !disk.number; });
    DiskFacts.Join(drives, listed, source, &IsSameDisk);
}

/// A disk in a container of its own is plugged in from outside, whatever its bus and its owner's settings: by
/// Thunderbolt, USB4 or USB.
void FinishDisk(DiskInfo& disk)
{
    if (disk.isInternal == false)
        disk.isRemovable = true;
    else if (disk.isInternal && !disk.isRemovable)
        disk.isRemovable = false;
}

/// Disks that hold Windows first, then fixed ones, then by the ids, and by number.
auto GetRank(const DiskDrive& drive)
{
    const DiskInfo& disk = drive.record;
    return std::make_tuple(!disk.holdsWindows.value_or(false), disk.isRemovable.value_or(false),
                           std::wstring(disk.deviceId.ToString()), std::wstring(disk.instanceId.ToString()),
                           disk.number.value_or(-1));
}

std::vector<DiskDrive> ListOfSystem()
{
    return ListDiskDrives(StorageFunctions::OfSystem());
}

}  // namespace

std::vector<DiskDrive> ListDiskDrives(const StorageFunctions& functions)
{
    const ErrorMode quiet;
    Disks storage = ListDisks(functions);
    Disks wmi = ListWmiDisks();
    const Disks setup = ListSetupDisks(functions);
    DropCutModels(storage, wmi);
    DropCutModels(storage, setup);
    DropCutModels(wmi, setup);

    std::vector<DiskDrive> drives;
    Add(drives, storage, L"the storage functions");
    Add(drives, wmi, L"WMI");
    Add(drives, setup, L"the Setup API");
    const std::vector<std::int32_t> windows = ReadWindowsDisks(functions);
    for (DiskDrive& drive : drives) {
        if (!windows.empty() && drive.record.number)
            drive.record.holdsWindows = std::ranges::count(windows, *drive.record.number) > 0;
        FinishDisk(drive.record);
    }
    SortStably(drives, {}, &GetRank);
    return drives;
}

DiskDrives& GetDiskDrives()
{
    static DiskDrives drives(&ListOfSystem);
    return drives;
}

bool IsLeftOut(const DiskInfo& disk)
{
    if (disk.holdsWindows.value_or(false))
        return false;
    return disk.isVirtual.value_or(false) || (disk.capacity && disk.capacity->Bytes() == 0);
}

std::vector<std::int32_t> ListLooseDisks(const std::vector<DiskDrive>& drives)
{
    std::vector<std::int32_t> numbers;
    for (const auto& [disk, sources] : drives) {
        const bool isMadeOfFile = disk.isVirtual.value_or(false) && !disk.holdsWindows.value_or(false);
        if (disk.number && (disk.isRemovable.value_or(false) || isMadeOfFile))
            numbers.push_back(*disk.number);
    }
    return numbers;
}

}  // namespace kel
