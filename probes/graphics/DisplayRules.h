// Conversions of the numbers of a display's configuration.
#pragma once

#include <windows.h>

#include <optional>

#include "values/Count.h"

namespace kel {

/// The refresh rate in Hz, rounded: 59.94 is 60. Nullopt for 0 and for a zero denominator.
std::optional<Count> RefreshRate(DISPLAYCONFIG_RATIONAL rate);

/// Bits per pixel. Nullopt for formats that desktops do not use.
std::optional<Count> BitsPerPixel(DISPLAYCONFIG_PIXELFORMAT format);

/// The name of a connector such as "HDMI"; "internal" for built-in monitors, empty for an unknown connector.
const wchar_t* ConnectorName(DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY technology);

/// Whether the monitor is built into the machine; nullopt for an unknown connector.
std::optional<bool> IsBuiltIn(DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY technology);

}  // namespace kel
