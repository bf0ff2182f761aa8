// The facts that the list of graphics adapters asks Direct3D for, which loads a driver.
#include <algorithm>

#include "detectors/DirectXFacts.h"
#include "detectors/GpuJoin.h"
#include "detectors/GraphicsAdapters.h"
#include "diag/SourceFailures.h"
#include "probes/graphics/FeatureLevel.h"

namespace kel {

void GraphicsAdapters::AskForLevels(Devices& devices) const
{
    const auto lacksLevel = [](const GpuDevice& device) { return !device.record.featureLevel; };
    for (GpuDevice& device : devices) {
        const DXGI::Adapter* const found = FindInterface(device);
        // Without the interface the system would answer for an adapter of its own choice, even a software
        // one.
        if (found != nullptr && lacksLevel(device))
            CollectFailures(device.record.failures, [&] { AskForLevel(device, *found); });
    }
    if (std::ranges::none_of(devices, lacksLevel) || !isNamed || !probes.directX9.IsThere())
        return;
    std::vector<GpuInfo> adapters;
    probes.directX9.GetGpuInfo(adapters);
    for (GpuDevice& device : devices) {
        const auto same = std::ranges::find_if(
            adapters, [&device](const GpuInfo& adapter) { return IsSameAdapter(device.record, adapter); });
        GpuInfo asked;
        if (same != adapters.end())
            asked.featureLevel = same->featureLevel;
        GpuFacts.Merge(device, asked, L"Direct3D 9");
    }
}

void GraphicsAdapters::AskForLevel(GpuDevice& device, const DXGI::Adapter& found) const
{
    IDXGIAdapter1* const adapter = found.adapter.Get();
    const std::wstring name = device.record.description.ToString();
    const wchar_t* source = L"Direct3D 11";
    std::uint32_t level = probes.directX11.IsThere() ? probes.directX11.GetFeatureLevel(adapter, name) : 0;
    if (level == 0 && probes.directX10.IsThere()) {
        source = L"Direct3D 10";
        level = probes.directX10.GetFeatureLevel(adapter, name);
    }
    if (level >= D3D_FEATURE_LEVEL_11_0 && probes.directX12.IsThere()) {
        const std::uint32_t higher = probes.directX12.GetFeatureLevel(adapter, name, level);
        source = higher > level ? L"Direct3D 12" : source;
        level = std::max(level, higher);
    }
    GpuInfo asked;
    asked.featureLevel = LevelVersion(level);
    GpuFacts.Merge(device, asked, source);
}

void GraphicsAdapters::AskForFirst(GpuDevice& device)
{
    if (IsAnyWanted({ShaderModelId}))
        AskForShaderModel(device);
    const DXGI::Adapter* const found = FindInterface(device);
    if (found == nullptr || !IsAnyWanted({RayTracingId}) || !probes.directX12.IsThere())
        return;
    const std::optional<std::uint32_t> tier =
        probes.directX12.GetRayTracingTier(found->adapter.Get(), device.record.description.ToString());
    if (tier)
        rayTracing = RayTracingVersion(*tier);
}

void GraphicsAdapters::AskForShaderModel(GpuDevice& device) const
{
    const DXGI::Adapter* const found = FindInterface(device);
    GpuInfo asked;
    const std::optional<Version>& level = device.record.featureLevel;
    if (found != nullptr && level && !(*level < Version(L"11.0")) && probes.directX12.IsThere())
        asked.shaderModel = ShaderModelVersion(
            probes.directX12.GetShaderModel(found->adapter.Get(), device.record.description.ToString()));
    GpuFacts.Merge(device, asked, L"Direct3D 12");
    asked.shaderModel = ShaderModelOfLevel(level);
    GpuFacts.Merge(device, asked, L"the feature level");
}

}  // namespace kel
