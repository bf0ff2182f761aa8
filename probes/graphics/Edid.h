// A monitor's description of itself, in the bytes that it sends to the graphics adapter (VESA's EDID).
#pragma once

#include <windows.h>

#include <optional>
#include <span>

#include "probes/graphics/MonitorInfo.h"

namespace kel {

/// Reads name, id, native resolution, size and year from the first 128 bytes of an EDID. The bytes are
/// untrusted: they come from the other end of a cable. Serial numbers are not read.
/// @return nullopt when there are too few bytes, or their header or checksum is wrong
std::optional<MonitorInfo> ReadEdid(std::span<const BYTE> bytes);

/// The same for a monitor's instance id, from the registry; an override by an administrator or a driver comes
/// first. An invalid EDID is a warning in the log.
std::optional<MonitorInfo> ReadMonitorEdid(const std::wstring& instance);

}  // namespace kel
