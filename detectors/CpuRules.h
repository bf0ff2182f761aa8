// The rules by which the sources' processor records become one.
#pragma once

#include "probes/CpuInfo.h"

namespace kel {

/// Takes what the target lacks from a source. The rated speed is always taken, also when it is empty: no
/// source fills it, and what follows the merge counts on starting from nothing.
void MergeCpuInfo(CpuInfo& target, const CpuInfo& source);

/// Tidies the name of the merged record and computes its rated speed.
void FinishCpuInfo(CpuInfo& info);

}  // namespace kel
