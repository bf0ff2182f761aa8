#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

#include "probes/system/OSInfo.h"
#include "values/Name.h"
#include "values/Version.h"

namespace kel {

/// Facts about Windows that are correct in every host, with or without a manifest. Unknown ones are empty.
struct WindowsInfo {
    std::optional<Version> version;  ///< major.minor.build
    Name release;                    ///< such as "Windows 11"; see NameRelease
    Name featureUpdate;              ///< such as "23H2"
    Name edition;                    ///< such as "Professional"
    std::optional<std::int32_t> revision;
    Name architecture;  ///< the machine's own, even in an emulated process: "x64", "ARM64" or "x86"
    std::optional<bool> isServer;
    std::optional<bool> canAdminister;  ///< the user has administrator's rights, or gets them by consent
    std::optional<bool> isRestartPending;
};

/// Reads the facts: the version from `RtlGetVersion`, others from the registry, the process's token and
/// `IsWow64Process2`.
/// @param asksRevision whether the revision of the build is read
WindowsInfo ReadWindowsInfo(const OSFunctions& functions, bool asksRevision);

/// The machine's own architecture (IMAGE_FILE_MACHINE_...), even for an emulated process; 0 for any other
/// than x64, ARM64 and x86.
USHORT ReadNativeMachine(const OSFunctions& functions);

}  // namespace kel
