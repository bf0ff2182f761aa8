#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "platform/RegistryValue.h"
#include "probes/graphics/DisplayFunctions.h"
#include "probes/graphics/GraphicsFunctions.h"
#include "probes/network/NetworkInterfaces.h"
#include "probes/setup/SetupDevice.h"
#include "probes/sound/SoundEndpoints.h"
#include "probes/storage/StorageFunctions.h"
#include "probes/storage/Volumes.h"

namespace kel::kit {

/// The functions that answer for the devices that are recorded. A test replaces them.
struct DeviceEdges {
    StorageFunctions storage;
    VolumeFunctions volumes;
    NetworkFunctions network;
    DisplayFunctions displays;
    GraphicsFunctions graphics;
    SoundFunctions sound;

    /// The system's own.
    static DeviceEdges OfSystem();
};

/// The setup classes of the devices that are recorded, by the first number of their GUIDs.
enum class RecordedClass : DWORD {
    Optical = 0x4D36E965,
    Disks = 0x4D36E967,
    Graphics = 0x4D36E968,
    Sound = 0x4D36E96C,
    Monitors = 0x4D36E96E,
    Network = 0x4D36E972,
    Controllers = 0x4D36E97B,
};

/// Shows each present device of a class, through the Setup API, with its driver's key, which may be null.
void VisitDevices(RecordedClass kind,
                  const std::function<void(const SetupDevice& device, HKEY driver)>& visit);

/// A text of a driver's key; empty when there is none.
std::wstring DriverText(HKEY driver, const wchar_t* name);

/// A field of a line, such as "|name=text"; empty for an empty text.
std::string Field(const char* name, const std::string& text);

/// "own", "other" or nothing, as the lines have a device's container.
std::string ContainerOf(const SetupDevice& device);

}  // namespace kel::kit
