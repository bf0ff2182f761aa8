#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "probes/system/Battery.h"

namespace kel {

namespace {

struct ChassisInfo {
    bool isPortable = false;
};

constexpr FactTable Facts(Fact{71094, &ChassisInfo::isPortable});

}  // namespace

bool Chassis::Detect()
{
    return Guarded(L"kel::Chassis::Detect", L"Error in Chassis detection.",
                   [] { Facts.Store(ChassisInfo{HasLongTermBattery()}); });
}

bool Chassis::Detect(BOOLEAN(WINAPI* getCapabilities)(SYSTEM_POWER_CAPABILITIES*))
{
    return Guarded(L"kel::Chassis::Detect", L"Error in Chassis detection.",
                   [getCapabilities] { Facts.Store(ChassisInfo{HasLongTermBattery(getCapabilities)}); });
}

StoredFacts Chassis::ListFacts()
{
    return CollectFacts(Facts);
}

}  // namespace kel
