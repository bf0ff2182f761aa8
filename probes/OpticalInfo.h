#pragma once

#include "values/Name.h"

namespace kel {

/// What one source says about an optical drive; an empty text is unknown.
struct OpticalInfo {
    Name name;
    Name deviceId;   ///< hardware id, or the plug-and-play device id of WMI
    Name drive;      ///< drive letter, such as "D:"
    Name mediaType;  ///< as WMI describes it
};

}  // namespace kel
