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

template <typename List>
bool CDRom::DetectIn(List list)
{
    return Guarded(L"kel::CDRom::Detect", L"Error in CDRom detection.", [&list] {
        StoreDefaults(Totals, OpticalFacts);
        StoreDrives(list());
    });
}

bool CDRom::Detect()
{
    return DetectIn(&GetOpticalDrives);
}

bool CDRom::Detect(const StorageFunctions& functions)
{
    return DetectIn([&functions] { return ListOpticalDrives(functions); });
}

StoredFacts CDRom::ListFacts()
{
    return CollectFacts(Totals, OpticalFacts);
}

}  // namespace kel
