#pragma once

#include <optional>
#include <vector>

#include "diag/SourceFailures.h"
#include "probes/storage/OpticalAbilities.h"
#include "values/DeviceID.h"
#include "values/Name.h"

namespace kel {

/// One source's facts about an optical drive; empty ones are unknown.
struct OpticalInfo {
    Name name;
    DeviceID deviceId;
    Name instanceId;     ///< the key of the drive; can hold a serial number, so no value carries it
    bool isOff = false;  ///< switched off, or the system reports a problem with it
    Name drive;          ///< drive letter, such as "D:"
    Name mediaType;      ///< as WMI describes it
    OpticalAbilities abilities;
    const wchar_t* abilitySource = L"";   ///< their source, for the log
    std::optional<bool> writesCds;        ///< of the abilities
    std::optional<bool> isVirtual;        ///< shows an image instead of a medium
    std::vector<SourceFailure> failures;  ///< why its facts are incomplete
};

}  // namespace kel
