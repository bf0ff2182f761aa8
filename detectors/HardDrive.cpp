#include <algorithm>

#include "detectors/Detectors.h"
#include "detectors/DiskDrives.h"

namespace kel {

namespace {

/// Totals of the fixed disks.
struct DiskTotals {
    bool isThere = false;
    std::int32_t count = 0;
    std::optional<Size> capacity;  ///< unknown when one disk's capacity is
};

constexpr FactTable Totals(Fact{72500, &DiskTotals::isThere}, Fact{72501, &DiskTotals::count},
                           Fact{72511, &DiskTotals::capacity});

DiskTotals AddUp(const std::vector<DiskDrive>& drives)
{
    DiskTotals totals;
    bool isKnown = true;
    for (const DiskDrive& drive : drives) {
        if (drive.record.isRemovable.value_or(false))
            continue;
        totals.isThere = true;
        ++totals.count;
        isKnown &= drive.record.capacity.has_value();
        if (isKnown)
            totals.capacity = totals.capacity.value_or(Size()) += *drive.record.capacity;
    }
    if (!isKnown)  // the sum of the others would be too small
        totals.capacity.reset();
    return totals;
}

}  // namespace

bool HardDrive::Detect()
{
    return Detect(GetDiskDrives());
}

bool HardDrive::Detect(DiskDrives& disks)
{
    return Guarded(L"kel::HardDrive::Detect", L"Error in HardDrive detection.", [&disks] {
        StoreDefaults(Totals, DiskFacts);
        std::vector<DiskDrive> drives = disks.List();
        std::erase_if(drives, [](const DiskDrive& drive) { return IsLeftOut(drive.record); });
        Totals.Store(AddUp(drives));
        for (const DiskDrive& drive : drives)
            Totals.NoteFailures(drive.record.failures);
        StoreList(DiskFacts, drives, L"HardDrive");
    });
}

void HardDrive::Initialize()
{
    const LogScope trace(L"kel::HardDrive::Initialize");
}

StoredFacts HardDrive::ListFacts()
{
    return CollectFacts(Totals, DiskFacts);
}

}  // namespace kel
