#include "probes/ScsiList.h"

#include "diag/ProcessInstance.h"
#include "probes/SetupLib.h"

namespace kel {

namespace {

struct ScsiList {
    bool isRead = false;
    std::vector<ScsiInfo> controllers;
};

}  // namespace

const std::vector<ScsiInfo>& ScsiControllers()
{
    ScsiList& list = ProcessInstance<ScsiList>();
    if (!list.isRead) {
        list.controllers.clear();
        list.isRead = SetupLib::Instance().GetScsiInfo(list.controllers);
    }
    return list.controllers;
}

}  // namespace kel
