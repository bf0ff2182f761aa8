#include <algorithm>

#include "detectors/Detectors.h"
#include "detectors/OpticalDrives.h"

namespace kel {

namespace {

/// Totals of the real drives.
constexpr FactTable Totals(Fact{72100, &ListTotals::isThere}, Fact{72101, &ListTotals::count});

void StoreDrives(const std::vector<OpticalDrive>& drives)
{
    Totals.Store(ListTotals(std::ranges::count_if(drives, &IsRealDrive)));
    for (std::size_t place = 0; place < drives.size(); ++place) {
        if (const wchar_t* source = drives[place].record.abilitySource; *source != L'\0')
            WriteLog(LogTrace, L"CDRom[", place, L"] abilities from ", source);
        OpticalFacts.Store(drives[place], L"CDRom", static_cast<int>(place));
    }
}

}  // namespace

bool CDRom::Detect()
{
    return Detect(GetOpticalDrives());
}

bool CDRom::Detect(OpticalDrives& optical)
{
    return Guarded(L"kel::CDRom::Detect", L"Error in CDRom detection.", [&optical] {
        StoreDefaults(Totals, OpticalFacts);
        StoreDrives(optical.List());
    });
}

StoredFacts CDRom::ListFacts()
{
    return CollectFacts(Totals, OpticalFacts);
}

}  // namespace kel
