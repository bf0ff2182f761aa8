#include "detectors/ScsiControllers.h"

#include "probes/SetupLib.h"

namespace kel {

namespace {

std::vector<ScsiInfo> ListScsiControllers(SetupLib& library)
{
    std::vector<ScsiInfo> controllers;
    library.GetScsiInfo(controllers);
    return controllers;
}

}  // namespace

const std::vector<ScsiInfo>& GetScsiControllers()
{
    static const std::vector<ScsiInfo> controllers = ListScsiControllers(SetupLib::Instance());
    return controllers;
}

}  // namespace kel
