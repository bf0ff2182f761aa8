#include <algorithm>

#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "platform/ErrorMode.h"
#include "probes/setup/SetupLib.h"
#include "probes/storage/DiskModel.h"
#include "probes/storage/Disks.h"
#include "probes/wmi/WMI.h"

namespace kel {

namespace {

using Disks = std::vector<DiskInfo>;

/// Totals of the fixed disks.
struct DiskTotals {
    bool isThere = false;
    std::int32_t count = 0;
    std::optional<Size> capacity;
};

constexpr FactTable Totals(Fact{72500, &DiskTotals::isThere}, Fact{72501, &DiskTotals::count},
                           Fact{72511, &DiskTotals::capacity});
constexpr FactTable Facts(Fact{72502, &DiskInfo::model, L"model"}, Fact{72503, &DiskInfo::deviceId},
                          Fact{72504, &DiskInfo::capacity}, Fact{72505, &DiskInfo::bus},
                          Fact{72506, &DiskInfo::isSolidState}, Fact{72507, &DiskInfo::isRemovable},
                          Fact{72508, &DiskInfo::firmware}, Fact{72509, &DiskInfo::number, L"number"},
                          Fact{72510, &DiskInfo::holdsWindows}, Fact{NotStored, &DiskInfo::isVirtual});
using Drive = decltype(Facts)::Device;

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

/// Merges what a source lists. Where known disks have numbers, a disk without one is dropped: it is one of
/// them, but it is unknown which.
void Add(std::vector<Drive>& drives, Disks listed, const wchar_t* source)
{
    const bool hasNumbers =
        std::ranges::any_of(drives, [](const Drive& drive) { return drive.record.number.has_value(); });
    if (hasNumbers)
        std::erase_if(listed, [](const DiskInfo& disk) { return !disk.number; });
    Facts.Join(drives, listed, source, &IsSameDisk);
}

/// Whether a drive does not count: one without a medium, a floppy, or a disk made of a file, unless it holds
/// Windows.
bool IsLeftOut(const Drive& drive)
{
    const DiskInfo& disk = drive.record;
    if (disk.holdsWindows.value_or(false))
        return false;
    return disk.isVirtual.value_or(false) || (disk.capacity && disk.capacity->Bytes() == 0);
}

/// Disks that hold Windows first, then fixed ones, then by device id.
auto GetRank(const Drive& drive)
{
    const DiskInfo& disk = drive.record;
    return std::make_tuple(!disk.holdsWindows.value_or(false), disk.isRemovable.value_or(false),
                           std::wstring(disk.deviceId.ToString()));
}

DiskTotals AddUp(const std::vector<Drive>& drives)
{
    DiskTotals totals;
    for (const Drive& drive : drives) {
        if (drive.record.isRemovable.value_or(false))
            continue;
        totals.isThere = true;
        ++totals.count;
        if (drive.record.capacity)
            totals.capacity = totals.capacity.value_or(Size()) += *drive.record.capacity;
    }
    return totals;
}

}  // namespace

bool HardDrive::Detect()
{
    return Detect(StorageFunctions::OfSystem());
}

bool HardDrive::Detect(const StorageFunctions& functions)
{
    return Guarded(L"kel::HardDrive::Detect", L"Error in HardDrive detection.", [&functions] {
        const ErrorMode quiet;
        StoreDefaults(Totals, Facts);
        Disks storage = ListDisks(functions);
        Disks wmi = ListWmiDisks();
        const Disks setup = ListSetupDisks(functions);
        DropCutModels(storage, wmi);
        DropCutModels(storage, setup);
        DropCutModels(wmi, setup);

        std::vector<Drive> drives;
        Add(drives, storage, L"the storage functions");
        Add(drives, wmi, L"WMI");
        Add(drives, setup, L"the Setup API");
        const std::vector<std::int32_t> windows = ReadWindowsDisks(functions);
        for (Drive& drive : drives) {
            if (!windows.empty() && drive.record.number)
                drive.record.holdsWindows = std::ranges::count(windows, *drive.record.number) > 0;
        }
        std::erase_if(drives, &IsLeftOut);
        std::ranges::stable_sort(drives, {}, &GetRank);

        Totals.Store(AddUp(drives));
        StoreList(Facts, drives, L"HardDrive");
    });
}

void HardDrive::Initialize()
{
    const LogScope trace(L"kel::HardDrive::Initialize");
}

StoredFacts HardDrive::ListFacts()
{
    return CollectFacts(Totals, Facts);
}

}  // namespace kel
