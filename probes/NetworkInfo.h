#pragma once

#include <windows.h>

#include "values/Exists.h"
#include "values/Name.h"

namespace kel {

/// Of what kind a network connection is; the numbers are the analysis service's.
enum class MediaKind : DWORD { Unknown = 0, Lan = 1, Wireless = 256 };

/// What one source says about a network adapter; an empty text is unknown.
struct NetworkInfo {
    Name name;
    Name hardwareId;
    Exists isOnBus;  ///< on PCI bus 0, that is, on the board
    Name driverVersion;
    Name instanceId;    ///< of the network configuration, a GUID in braces
    Name mediaSubType;  ///< decimal
    MediaKind mediaKind = MediaKind::Unknown;
};

}  // namespace kel
