#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <cstdint>
#include <optional>

#include "values/Name.h"
#include "values/Version.h"

namespace kel {

/// The start of TPM_DEVICE_INFO, which the platform's headers do not declare everywhere.
struct TpmInfo {
    std::uint32_t structVersion;
    std::uint32_t tpmVersion;  ///< 1 is 1.2, 2 is 2.0
    std::uint32_t interfaceType;
    std::uint32_t revision;
};

/// The system's functions for its firmware and TPM; a test replaces them.
struct FirmwareFunctions {
    /// GetFirmwareType: 1 is BIOS, 2 is UEFI; may be missing.
    boost::function<BOOL(DWORD& type)> getFirmwareType;
    /// The error of GetFirmwareEnvironmentVariableW for a variable that no firmware has.
    boost::function<DWORD()> getVariableError;
    /// Tbsi_GetDeviceInfo, which needs no rights; may be missing.
    boost::function<std::uint32_t(TpmInfo& info)> getTpm;

    /// The system's own. "tbs.dll" is loaded when it is first needed and stays loaded.
    static FirmwareFunctions OfSystem();
};

/// The kind of the firmware, and facts that depend on it; unknown ones are empty.
struct FirmwareInfo {
    Name kind;  ///< "UEFI" or "BIOS"
    std::optional<bool> hasSecureBoot;
    std::optional<bool> hasTpm;
    std::optional<Version> tpmVersion;
};

/// Reads the facts. The TPM is asked for nothing else, and no firmware variable is read.
FirmwareInfo ReadFirmware(const FirmwareFunctions& functions);

}  // namespace kel
