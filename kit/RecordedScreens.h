// Records the pictures on the displays.
#pragma once

#include <string>
#include <vector>

#include "kit/DeviceMasks.h"
#include "probes/graphics/DisplayFunctions.h"

namespace kel::kit {

/// A display that is recorded: the monitor's instance id, and the fields of its line.
struct Screen {
    std::wstring instance;
    std::string fields;
};

struct Screens {
    std::vector<Screen> all;
    bool hasPaths = false;  ///< read by QueryDisplayConfig; else by the older EnumDisplayDevices
};

/// The displays that show something.
Screens RecordScreens(const DisplayFunctions& functions, DeviceMasks& masks);

}  // namespace kel::kit
