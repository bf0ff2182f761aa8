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
    const HMODULE library = LoadSystemLibrary(L"PowrProf.dll").release();
    return {library != nullptr ? FindFunction<decltype(GetPwrCapabilities)>(library, "GetPwrCapabilities")
                               : nullptr,
            &GetSystemMetrics};
}

}  // namespace kel
