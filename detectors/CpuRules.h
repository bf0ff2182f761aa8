// Facts that follow from the merged processor record.
#pragma once

#include "probes/cpu/CpuInfo.h"

namespace kel {

/// Tidies the name of the merged record, and computes its rated speed and whether virtualization is on.
void FinishCpuInfo(CpuInfo& info);

}  // namespace kel
