#pragma once

#include "probes/cpu/SystemCpu.h"
#include "probes/system/Firmware.h"
#include "probes/system/OSInfo.h"
#include "support/Machines.h"

namespace kel::test {

/// The functions of a machine's operating system, processors and firmware. Without a line for them, firmware
/// and processors are unknown, and the operating system is this machine's.
struct PlantedSystem {
    explicit PlantedSystem(const Machine& machine);

    OSFunctions os = OSFunctions::OfSystem();
    CpuFunctions processors;
    FirmwareFunctions firmware;
};

}  // namespace kel::test
