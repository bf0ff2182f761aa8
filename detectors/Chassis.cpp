#include "detectors/Chassis.h"

#include "diag/Owners.h"
#include "values/Exists.h"

namespace kel {

namespace {

constexpr unsigned PortableId = 71094;

static_assert(sizeof(SYSTEM_POWER_CAPABILITIES) == 76);

}  // namespace

bool HasLongTermBattery(decltype(&GetPwrCapabilities) getCapabilities)
{
    SYSTEM_POWER_CAPABILITIES capabilities = {};
    return getCapabilities != nullptr && getCapabilities(&capabilities) &&
           capabilities.SystemBatteriesPresent && !capabilities.BatteriesAreShortTerm;
}

bool Chassis::Detect()
{
    return Guarded(L"kel::Chassis::Detect", L"Error in Chassis detection.", [] {
        const OwnedLibrary library(LoadLibraryW(L"PowrProf.dll"));
        AddValue(PortableId, Exists(library && HasLongTermBattery(FindFunction<decltype(GetPwrCapabilities)>(
                                                   library.get(), "GetPwrCapabilities"))));
    });
}

}  // namespace kel
