#pragma once

#include <vector>

#include "detectors/ListedOnce.h"
#include "probes/storage/ScsiInfo.h"

namespace kel {

class SetupLib;

/// The kind of a controller, by the class code among its compatible ids; "virtual" for one that a driver or a
/// virtual machine emulates. Empty for every other class.
std::wstring GetControllerKind(const ScsiInfo& controller);

/// Lists the controllers with their kinds: SCSI, SAS and RAID first, virtual ones last.
std::vector<ScsiInfo> ListScsiControllers(SetupLib& library);

using ScsiControllers = ListedOnce<ScsiInfo>;

/// The controllers of this machine, listed once in the process.
ScsiControllers& GetScsiControllers();

/// Whether a controller is a real one for disks that SCSI commands reach: SCSI, SAS or RAID.
bool IsRealController(const ScsiInfo& controller);

}  // namespace kel
