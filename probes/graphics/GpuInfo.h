#pragma once

#include <optional>
#include <string>
#include <vector>

#include "diag/SourceFailures.h"
#include "values/DeviceID.h"
#include "values/Name.h"
#include "values/Size.h"
#include "values/Version.h"

namespace kel {

/// One source's facts about a graphics adapter; an empty text or option is unknown.
struct GpuInfo {
    std::wstring luid;  ///< the graphics interfaces' key until the next start of Windows, hexadecimal
    std::wstring
        instanceId;  ///< of the Setup API, in upper case; can distinguish machines, so it is not stored
    Name description;
    DeviceID deviceId;
    std::optional<Size> videoMemory;   ///< the adapter's own; never 0
    std::optional<Size> driverMemory;  ///< the adapter's own or the shared memory, as its driver writes it
    std::optional<Size> sharedMemory;
    std::optional<Version> driverVersion;
    std::optional<Version> vendorVersion;  ///< the vendor's own version of its driver
    std::optional<Version> driverModel;    ///< of Windows, such as 3.1
    std::optional<Version> featureLevel;   ///< of Direct3D, such as 12.1
    std::optional<Version> shaderModel;
    std::optional<bool> isIntegrated;
    std::optional<bool> isNvidia;
    std::optional<bool> isAmd;
    std::optional<bool> isIntel;
    std::optional<bool> isVirtual;
    Name chipType;
    Name dacType;
    Name driverDescription;
    Name driverDate;              ///< such as "2024-05-01"
    std::wstring vulkanManifest;  ///< the path of a file that describes the Vulkan driver; not stored
    std::optional<Version> vulkanVersion;
    bool hasDirect3D = false;             ///< a graphics interface lists it
    bool isSoftware = false;              ///< a graphics interface reports it as a software or remote adapter
    std::vector<SourceFailure> failures;  ///< why its facts are incomplete
};

/// An amount of memory as a source gives it; 0 is unknown.
inline std::optional<Size> KnownSize(std::uint64_t bytes)
{
    return bytes != 0 ? std::optional(Size(bytes)) : std::nullopt;
}

/// A version as a source gives it; an empty text is unknown.
inline std::optional<Version> KnownVersion(const std::wstring& text)
{
    return !text.empty() ? std::optional(Version(text)) : std::nullopt;
}

}  // namespace kel
