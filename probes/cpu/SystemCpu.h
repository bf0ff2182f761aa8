// The operating system's facts about the processors.
#pragma once

#include <windows.h>

#include "probes/cpu/CpuInfo.h"

namespace kel {

/// The number of logical processors (`GetSystemInfo`) and the measured clock. Always true. Spins for one
/// second.
bool GetSystemCpuInfo(CpuInfo& info);

/// The same from given figures; a fraction of a MHz is dropped.
CpuInfo DescribeProcessors(DWORD count, float megahertz);

/// The rate of the time-stamp counter in MHz, measured against `QueryPerformanceCounter` for one second; 0
/// when that counter does not work.
float MeasureMegahertz();

}  // namespace kel
