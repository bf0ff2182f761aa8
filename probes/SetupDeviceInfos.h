// Records of the devices that the Setup API lists; an empty text is unknown.
#pragma once

#include <windows.h>

#include "values/DeviceID.h"
#include "values/Exists.h"
#include "values/Name.h"
#include "values/Size.h"

namespace kel {

struct SetupHardDriveInfo {
    Name friendlyName;
    Name model;  ///< the hardware id less its bus prefix
};

struct SetupGpuInfo {
    Name description;
    Name driverVersion;
    Name chipType;
    Name dacType;
    Name driverDescription;
    Size videoMemory;
    DeviceID deviceId;
};

struct SetupScsiInfo {
    Name hardwareId;
    Name driverVersion;
};

struct SetupCDRomInfo {
    Name name;
    Name hardwareId;
};

struct SetupSoundInfo {
    Name name;
    Name hardwareId;
    Name driverVersion;
};

/// Of what kind a network connection is; the numbers are the analysis service's.
enum class MediaKind : DWORD { Unknown = 0, Lan = 1, Wireless = 256 };

struct SetupNetworkInfo {
    Name name;
    Name hardwareId;
    Exists isOnBus;  ///< on PCI bus 0, that is, on the board
    Name driverVersion;
    Name instanceId;    ///< of the network configuration, a GUID in braces
    Name mediaSubType;  ///< decimal
    MediaKind mediaKind = MediaKind::Unknown;
};

}  // namespace kel
