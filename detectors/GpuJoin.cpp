#include "detectors/GpuJoin.h"

#include <algorithm>

#include "detectors/GpuRules.h"
#include "diag/Log.h"
#include "values/StableSort.h"

namespace kel {

bool IsSameAdapter(const GpuInfo& one, const GpuInfo& other)
{
    if (!one.luid.empty() && !other.luid.empty())
        return one.luid == other.luid;
    return one.deviceId.Matches(other.deviceId);
}

bool IsNoteOf(const GpuInfo& adapter, const GpuInfo& note)
{
    return !note.luid.empty() && adapter.luid == note.luid && adapter.deviceId.Matches(note.deviceId);
}

std::vector<GpuInfo> WithoutExcluded(std::vector<GpuInfo> adapters)
{
    std::erase_if(adapters, [](const GpuInfo& adapter) {
        return IsExcludedAdapter(adapter) ||
               (!adapter.description.HasValue() && !adapter.deviceId.HasValue());
    });
    return adapters;
}

void DropRepeated(std::vector<GpuInfo>& listed, const std::vector<GpuInfo>& present)
{
    SortStably(listed, {}, &GpuInfo::luid);
    std::vector<GpuInfo> kept;
    for (const GpuInfo& adapter : listed) {
        const auto isSame = [&adapter](const GpuInfo& other) {
            return adapter.deviceId.Matches(other.deviceId);
        };
        const auto places = std::ranges::count_if(present, isSame);
        if (places == 0 || std::ranges::count_if(kept, isSame) < places)
            kept.push_back(adapter);
        else
            WriteLog(LogTrace, L"DXGI lists an adapter again: ", adapter.deviceId.ToString());
    }
    listed = kept;
}

}  // namespace kel
