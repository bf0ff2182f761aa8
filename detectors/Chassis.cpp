#include "detectors/Chassis.h"

#include <windows.h>

#include <powrprof.h>

#include "diag/Owners.h"
#include "values/Exists.h"

namespace kel {

namespace {

constexpr unsigned PortableId = 71094;

static_assert(sizeof(SYSTEM_POWER_CAPABILITIES) == 76);

bool HasLongTermBattery()
{
    const OwnedLibrary library(LoadLibraryW(L"PowrProf.dll"));
    if (!library)
        return false;
    const auto getCapabilities = FindFunction<decltype(GetPwrCapabilities)>(library, "GetPwrCapabilities");
    SYSTEM_POWER_CAPABILITIES capabilities = {};
    return getCapabilities != nullptr && getCapabilities(&capabilities) &&
           capabilities.SystemBatteriesPresent && !capabilities.BatteriesAreShortTerm;
}

}  // namespace

bool Chassis::Detect()
{
    return Guarded(L"kel::Chassis::Detect", L"Error in Chassis detection.",
                   [] { AddValue(PortableId, Exists(HasLongTermBattery())); });
}

}  // namespace kel
