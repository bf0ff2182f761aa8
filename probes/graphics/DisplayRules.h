// How the numbers of a display's configuration are read.
#pragma once

#include <windows.h>

#include <optional>

#include "values/Count.h"

namespace kel {

/// Refreshes a second, rounded to the nearest: 59.94 is 60. Nothing for 0, and for a fraction of nothing.
std::optional<Count> RefreshRate(DISPLAYCONFIG_RATIONAL rate);

/// Nothing for a format that is not the desktop's.
std::optional<Count> BitsPerPixel(DISPLAYCONFIG_PIXELFORMAT format);

/// Such as "HDMI", or "internal" for all that are built in; empty when it is unknown.
const wchar_t* ConnectorName(DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY technology);

/// Whether the monitor is built into the machine; nothing when the connector is unknown.
std::optional<bool> IsBuiltIn(DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY technology);

}  // namespace kel
