#include <algorithm>

#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "detectors/ScsiControllers.h"

namespace kel {

namespace {

/// Totals of the real controllers.
constexpr FactTable Totals(Fact{73300, &ListTotals::isThere}, Fact{73301, &ListTotals::count});
constexpr FactTable Facts(Fact{73302, &ScsiInfo::name}, Fact{73303, &ScsiInfo::deviceId},
                          Fact{73304, &ScsiInfo::driverVersion}, Fact{73305, &ScsiInfo::kind});

}  // namespace

bool SCSI::Detect()
{
    return Detect(GetScsiControllers());
}

bool SCSI::Detect(ScsiControllers& listed)
{
    return Guarded(L"kel::SCSI::Detect", L"Error in SCSI detection.", [&listed] {
        StoreDefaults(Totals, Facts);
        const std::vector<ScsiInfo>& controllers = listed.List();
        Totals.Store(ListTotals(std::ranges::count_if(controllers, &IsRealController)));
        StoreList(Facts, controllers, L"SCSI");
    });
}

StoredFacts SCSI::ListFacts()
{
    return CollectFacts(Totals, Facts);
}

}  // namespace kel
