#pragma once

#include <windows.h>

#include <optional>

namespace kel {

/// The version of Windows as `RtlGetVersion` reports it, which does not depend on the host's manifest;
/// nullopt when the system does not report it.
std::optional<OSVERSIONINFOEXW> ReadWindowsVersion();

}  // namespace kel
