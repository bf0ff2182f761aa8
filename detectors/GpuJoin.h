// Which of the graphics adapters that sources list are the same.
#pragma once

#include <vector>

#include "probes/graphics/GpuInfo.h"

namespace kel {

/// Two equal cards differ by the graphics interfaces' key, where both sources have it.
bool IsSameAdapter(const GpuInfo& one, const GpuInfo& other);

/// Whether a cache entry describes the adapter: an entry may be left over from an adapter that is gone and
/// whose key another one has now.
bool IsNoteOf(const GpuInfo& adapter, const GpuInfo& note);

/// Drops the excluded adapters, and those that have neither a name nor an id.
std::vector<GpuInfo> WithoutExcluded(std::vector<GpuInfo> adapters);

/// Sorts the adapters that DXGI lists by their keys, and drops those that it lists again under a later key,
/// as in a remote session: for each id it keeps as many as are present.
/// @param present the working adapters of the Setup API; an id that is not among them is not limited
void DropRepeated(std::vector<GpuInfo>& listed, const std::vector<GpuInfo>& present);

}  // namespace kel
