// The operating system's facts about the processors.
#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <optional>

#include "probes/cpu/CpuInfo.h"

namespace kel {

/// The system's functions for its processors; a test replaces them.
struct CpuFunctions {
    /// GetLogicalProcessorInformationEx; may be missing.
    boost::function<BOOL(LOGICAL_PROCESSOR_RELATIONSHIP, SYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX*, DWORD*)>
        getTopology;
    /// Whether virtualization is on in the firmware; nullopt before Windows 8, which does not know it.
    boost::function<std::optional<bool>()> firmwareVirtualizes;
    /// MeasureMegahertz, which takes a second.
    boost::function<float()> measureMegahertz;

    /// The system's own.
    static CpuFunctions OfSystem();
};

/// Cores, threads and caches, and virtualization in the firmware.
void GetTopology(const CpuFunctions& functions, CpuInfo& info);

/// The number of logical processors (`GetSystemInfo`) and the measured clock. Always true.
bool GetSystemCpuInfo(const CpuFunctions& functions, CpuInfo& info);

/// The same from given figures; a fraction of a MHz is dropped.
CpuInfo DescribeProcessors(DWORD count, float megahertz);

/// The rate of the time-stamp counter in MHz, measured against `QueryPerformanceCounter`; 0 when that counter
/// does not work. Spins for one second.
float MeasureMegahertz();

}  // namespace kel
