#include <algorithm>

#include "detectors/Detectors.h"
#include "detectors/OpticalDrives.h"

namespace kel {

namespace {

/// What is said of all real drives together.
struct CDRomTotals {
    bool isThere = false;
    std::int32_t count = 0;
};

constexpr FactTable Totals(Fact{72100, &CDRomTotals::isThere}, Fact{72101, &CDRomTotals::count});

void StoreDefaults()
{
    Totals.Store(CDRomTotals());
    OpticalFacts.Store(OpticalInfo());
}

void StoreDrives(const std::vector<OpticalDrive>& drives)
{
    CDRomTotals totals;
    totals.count = static_cast<std::int32_t>(std::ranges::count_if(drives, &IsRealDrive));
    totals.isThere = totals.count > 0;
    Totals.Store(totals);
    for (std::size_t place = 0; place < drives.size(); ++place) {
        if (const wchar_t* source = drives[place].record.abilitySource; *source != L'\0')
            WriteLog(LogTrace, L"CDRom[", place, L"] abilities from ", source);
        OpticalFacts.Store(drives[place], L"CDRom", static_cast<int>(place));
    }
}

}  // namespace

bool CDRom::Detect()
{
    return Guarded(L"kel::CDRom::Detect", L"Error in CDRom detection.", [] {
        StoreDefaults();
        StoreDrives(GetOpticalDrives());
    });
}

bool CDRom::Detect(const StorageFunctions& functions)
{
    return Guarded(L"kel::CDRom::Detect", L"Error in CDRom detection.", [&functions] {
        StoreDefaults();
        StoreDrives(ListOpticalDrives(functions));
    });
}

}  // namespace kel
