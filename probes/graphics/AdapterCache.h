#pragma once

#include <vector>

#include "probes/graphics/GpuInfo.h"

namespace kel {

/// Appends what Windows has cached about the graphics adapters (the keys below HKLM
/// `SOFTWARE\Microsoft\DirectX`): key, id, name, memory, driver version and level. Entries of removed
/// adapters stay in the cache, and another adapter may have received their key since.
void ReadAdapterCache(std::vector<GpuInfo>& adapters);

}  // namespace kel
