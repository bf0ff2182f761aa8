#pragma once

#include <vector>

#include "probes/graphics/GpuInfo.h"

namespace kel {

/// Appends what Windows noted of the graphics adapters (the keys below HKLM `SOFTWARE\Microsoft\DirectX`):
/// key, id, name, memory, driver version and level. The notes of adapters that are gone stay there, and their
/// keys may be another's by now.
void ReadAdapterCache(std::vector<GpuInfo>& adapters);

}  // namespace kel
