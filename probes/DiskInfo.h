#pragma once

#include <cstdint>
#include <optional>

#include "values/Name.h"

namespace kel {

/// What one source says about a disk; an empty text is unknown.
struct DiskInfo {
    Name model;                          ///< of WMI, or the hardware id less its bus prefix
    Name friendlyName;                   ///< as the Setup API has it
    Name deviceName;                     ///< such as \\.\PHYSICALDRIVE0
    std::optional<std::int32_t> number;  ///< Windows' disk number
};

}  // namespace kel
