#pragma once

#include <optional>
#include <string>
#include <vector>

#include "diag/SourceFailures.h"
#include "values/Count.h"
#include "values/DeviceID.h"
#include "values/Name.h"
#include "values/Resolution.h"

namespace kel {

/// What one source says about a monitor; an empty text or option is unknown.
struct MonitorInfo {
    std::wstring instance;  ///< its device instance id in upper case, which can distinguish monitors
    Name name;
    DeviceID deviceId;
    Resolution nativeResolution;
    Resolution currentResolution;
    std::optional<Count> refreshRate;  ///< a second
    std::optional<Count> diagonal;     ///< tenths of an inch
    std::optional<Count> width;        ///< millimetres, as is the height
    std::optional<Count> height;
    Name connector;
    std::optional<bool> isBuiltIn;
    std::optional<bool> isHdr;  ///< it can show a high dynamic range
    std::optional<Count> year;  ///< in which it was made
    bool isPrimary = false;
    std::optional<Count> highestRate;     ///< refreshes a second, of the modes with the current resolution
    std::wstring display;                 ///< that shows its picture, such as "\\\\.\\DISPLAY1"
    bool isGeneric = false;               ///< Windows' own driver for any monitor names it
    std::vector<SourceFailure> failures;  ///< why its facts are incomplete
};

/// A monitor's mode; empty for one below 320x200, which no monitor has: descriptors can hold filler bytes.
Resolution KnownMode(std::uint32_t width, std::uint32_t height);

/// The device instance id of a device interface's path, such as
/// `\\?\DISPLAY#DEL40A5#5&1&0&UID1#{E6F07B5F-EE97-4A90-B076-33F57BF4EAA7}`, in upper case; empty for a text
/// of another form.
std::wstring InstanceOfPath(const std::wstring& path);

}  // namespace kel
