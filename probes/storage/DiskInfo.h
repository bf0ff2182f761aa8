#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "diag/SourceFailures.h"
#include "values/DeviceID.h"
#include "values/Name.h"
#include "values/Size.h"
#include "values/Version.h"

namespace kel {

/// One source's facts about a disk; empty ones are unknown.
struct DiskInfo {
    Name model;         ///< vendor and model
    Name friendlyName;  ///< as the Setup API has it
    Name deviceName;    ///< such as \\.\PHYSICALDRIVE0
    Name instanceId;    ///< of the Setup API; can hold a serial number, so no value carries it
    DeviceID deviceId;
    std::optional<std::int32_t> number;  ///< Windows' disk number
    std::optional<Size> capacity;        ///< 0 for a drive without a medium
    Name bus;                            ///< such as "NVMe"
    std::optional<bool> isSolidState;
    std::optional<bool> isInternal;   ///< part of the computer, by its container
    std::optional<bool> isRemovable;  ///< the medium, or the disk with its cable
    std::optional<bool> isVirtual;    ///< made from a file
    std::optional<bool> holdsWindows;
    std::optional<Version> firmware;
    std::vector<SourceFailure> failures;  ///< why its facts are incomplete
};

}  // namespace kel
