#include <algorithm>

#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "detectors/ScsiControllers.h"

namespace kel {

namespace {

using S = ScsiInfo;

/// What is said of all real controllers together.
struct ScsiTotals {
    bool isThere = false;
    std::int32_t count = 0;
};

constexpr FactTable Totals(Fact{73300, &ScsiTotals::isThere}, Fact{73301, &ScsiTotals::count});
constexpr FactTable Facts(Fact{73302, &S::name}, Fact{73303, &S::deviceId}, Fact{73304, &S::driverVersion},
                          Fact{73305, &S::kind});

void StoreDefaults()
{
    Totals.Store(ScsiTotals());
    Facts.Store(ScsiInfo());
}

void StoreControllers(const std::vector<ScsiInfo>& controllers)
{
    ScsiTotals totals;
    totals.count = static_cast<std::int32_t>(std::ranges::count_if(controllers, &IsRealController));
    totals.isThere = totals.count > 0;
    Totals.Store(totals);
    for (std::size_t place = 0; place < controllers.size(); ++place)
        Facts.Store(controllers[place], static_cast<int>(place));
}

}  // namespace

bool SCSI::Detect()
{
    return Guarded(L"kel::SCSI::Detect", L"Error in SCSI detection.", [] {
        StoreDefaults();
        StoreControllers(GetScsiControllers());
    });
}

bool SCSI::Detect(SetupLib& library)
{
    return Guarded(L"kel::SCSI::Detect", L"Error in SCSI detection.", [&library] {
        StoreDefaults();
        StoreControllers(ListScsiControllers(library));
    });
}

}  // namespace kel
