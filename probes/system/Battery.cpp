#include "probes/system/Battery.h"

#include "platform/Library.h"

namespace kel {

static_assert(sizeof(SYSTEM_POWER_CAPABILITIES) == 76);

bool HasLongTermBattery(decltype(&GetPwrCapabilities) getCapabilities)
{
    SYSTEM_POWER_CAPABILITIES capabilities = {};
    return getCapabilities != nullptr && getCapabilities(&capabilities) &&
           capabilities.SystemBatteriesPresent && !capabilities.BatteriesAreShortTerm;
}

ChassisFunctions ChassisFunctions::OfSystem()
{
    return {PermanentFunction<decltype(GetPwrCapabilities)>(L"PowrProf.dll", "GetPwrCapabilities"),
            &GetSystemMetrics};
}

}  // namespace kel
