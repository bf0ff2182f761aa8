// Records of the devices that WMI lists; an empty text is unknown.
#pragma once

#include <cstdint>
#include <string>

namespace kel {

struct WmiHardDriveInfo {
    std::wstring model;
    std::wstring deviceName;
    std::int32_t index = 0;
};

struct WmiSoundInfo {
    std::wstring deviceName;
    std::wstring deviceId;
};

struct WmiCDRomInfo {
    std::wstring name;
    std::wstring deviceId;  ///< plug-and-play device id
    std::wstring drive;     ///< drive letter
    std::wstring mediaType;
};

}  // namespace kel
