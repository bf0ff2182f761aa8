// What a monitor says of itself, in the bytes that it gives to the graphics adapter (VESA's EDID).
#pragma once

#include <windows.h>

#include <optional>
#include <span>

#include "probes/graphics/MonitorInfo.h"

namespace kel {

/// Reads name, id, native resolution, size and year from an EDID, of which the first 128 bytes are enough.
/// The bytes are whatever the other end of a cable sends; serial numbers among them are not read.
/// @return nothing when the bytes are too few, or their header or checksum is wrong
std::optional<MonitorInfo> ReadEdid(std::span<const BYTE> bytes);

/// The same of a monitor by its instance id, from the registry; an override that an administrator or driver
/// put there comes first. One that is wrong is told by a warning in the log.
std::optional<MonitorInfo> ReadMonitorEdid(const std::wstring& instance);

}  // namespace kel
