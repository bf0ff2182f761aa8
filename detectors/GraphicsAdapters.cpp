#include "detectors/GraphicsAdapters.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "detectors/DirectXFacts.h"
#include "detectors/GpuRules.h"
#include "diag/ProcessInstance.h"
#include "probes/graphics/AdapterCache.h"
#include "probes/graphics/FeatureLevel.h"
#include "probes/setup/SetupLib.h"

namespace kel {

namespace {

constexpr const wchar_t* FromCache = L"the adapter cache";

bool IsAnyWanted(std::initializer_list<unsigned> ids)
{
    return std::ranges::any_of(ids, [](unsigned id) { return Session::Current().IsWanted(GroupID(id)); });
}

/// Two equal cards differ by the graphics interfaces' key, where both sources have it.
bool IsSame(const GpuInfo& one, const GpuInfo& other)
{
    if (!one.luid.empty() && !other.luid.empty())
        return one.luid == other.luid;
    return one.deviceId.Matches(other.deviceId);
}

/// Whether a cache entry describes the adapter: an entry may be left over from an adapter that is gone and
/// whose key another one has now.
bool IsNoteOf(const GpuInfo& adapter, const GpuInfo& note)
{
    return !note.luid.empty() && adapter.luid == note.luid && adapter.deviceId.Matches(note.deviceId);
}

bool HasName(const GpuInfo& adapter)
{
    return adapter.description.HasValue();
}

/// Old interfaces list displays, too; those have no vendor.
bool IsWithoutId(const GpuInfo& adapter)
{
    return !adapter.deviceId.HasValue();
}

/// Drops the excluded adapters, and those that have neither a name nor an id.
std::vector<GpuInfo> WithoutForeign(std::vector<GpuInfo> adapters)
{
    std::erase_if(adapters, [](const GpuInfo& adapter) {
        return IsExcludedAdapter(adapter) || (!HasName(adapter) && !adapter.deviceId.HasValue());
    });
    return adapters;
}

}  // namespace

GraphicsProbes GraphicsProbes::OfSystem()
{
    return {DXGI::Instance(),
            &ReadAdapterCache,
            [](std::vector<GpuInfo>& adapters) { SetupLib::Instance().GetGpuInfo(adapters); },
            DirectX_8::Instance(),
            DirectX_9::Instance(),
            DirectX_10::Instance(),
            DirectX_11::Instance(),
            DirectX_12::Instance(),
            DXDiag::Instance(),
            GraphicsFunctions::OfSystem()};
}

GraphicsAdapters& GraphicsAdapters::Instance()
{
    return ProcessInstance<GraphicsAdapters>();
}

GraphicsAdapters::GraphicsAdapters(GraphicsProbes newProbes) : probes(std::move(newProbes)) {}

const std::vector<GpuDevice>& GraphicsAdapters::List()
{
    if (isDone)
        return listed;
    Devices devices;
    interfaces = probes.dxgi.ListAdapters();
    ListCheaply(devices);
    if (!isNamed)
        ListByDrivers(devices);
    areLevelsAsked = !isNamed || IsAnyWanted({GpuLevelId, DirectXLevelId, ShaderModelId});
    if (areLevelsAsked)
        AskForLevels(devices);
    AskDxDiag(devices);
    for (GpuDevice& device : devices)
        FinishGpuInfo(device.record);
    std::ranges::stable_sort(devices, &IsBetterAdapter, &GpuDevice::record);
    if (!devices.empty() && IsAnyWanted({ShaderModelId}))
        AskForShaderModel(devices.front());
    interfaces.clear();
    listed = std::move(devices);
    isDone = true;
    return listed;
}

bool GraphicsAdapters::HasDirect3D()
{
    return std::ranges::any_of(List(), [this](const GpuDevice& device) {
        return device.record.hasDirect3D && (!areLevelsAsked || device.record.featureLevel);
    });
}

void GraphicsAdapters::ListCheaply(Devices& devices)
{
    std::vector<GpuInfo> byDxgi;
    std::vector<GpuInfo> bySetup;
    std::vector<GpuInfo> notes;
    for (const DXGI::Adapter& found : interfaces)
        byDxgi.push_back(found.info);
    probes.listDevices(bySetup);
    probes.readCache(notes);
    isNamed = std::ranges::any_of(byDxgi, &HasName) || std::ranges::any_of(bySetup, &HasName);

    const auto mergeNotes = [&devices](const std::vector<GpuInfo>& merged) {
        for (GpuDevice& device : devices) {
            for (const GpuInfo& note : merged) {
                if (IsNoteOf(device.record, note))
                    GpuFacts.Merge(device, note, FromCache);
            }
        }
    };
    GpuFacts.Join(devices, WithoutForeign(byDxgi), L"DXGI", &IsSame);
    std::vector<GpuInfo> first = notes;
    for (GpuInfo& note : first) {  // the Setup API's name and version have priority
        note.description = Name();
        note.driverVersion.reset();
    }
    mergeNotes(first);
    GpuFacts.Join(devices, WithoutForeign(bySetup), L"the Setup API", &IsSame);
    mergeNotes(notes);
    for (GpuDevice& device : devices) {
        const DXGI::Adapter* const found = FindInterface(device);
        if (found == nullptr || device.record.driverVersion)
            continue;
        GpuInfo version;
        version.driverVersion = DXGI::GetDriverVersion(*found);
        GpuFacts.Merge(device, version, L"DXGI");
    }
}

void GraphicsAdapters::ListByDrivers(Devices& devices) const
{
    std::vector<GpuInfo> adapters;
    if (probes.directX9.IsThere())
        probes.directX9.GetGpuInfo(adapters);
    std::erase_if(adapters, &IsWithoutId);
    GpuFacts.Join(devices, WithoutForeign(adapters), L"Direct3D 9", &IsSame);
}

void GraphicsAdapters::AskForLevels(Devices& devices) const
{
    const auto lacksLevel = [](const GpuDevice& device) { return !device.record.featureLevel; };
    for (GpuDevice& device : devices) {
        const DXGI::Adapter* const found = FindInterface(device);
        // Without the interface the system would answer for an adapter of its choice, even a software one.
        if (found != nullptr && lacksLevel(device))
            AskForLevel(device, *found);
    }
    if (std::ranges::none_of(devices, lacksLevel) || !isNamed || !probes.directX9.IsThere())
        return;
    std::vector<GpuInfo> adapters;
    probes.directX9.GetGpuInfo(adapters);
    for (GpuDevice& device : devices) {
        const auto same = std::ranges::find_if(
            adapters, [&device](const GpuInfo& adapter) { return IsSame(device.record, adapter); });
        if (same != adapters.end())
            GpuFacts.Merge(device, *same, L"Direct3D 9");
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

void GraphicsAdapters::AskDxDiag(Devices& devices) const
{
    const auto lacks = [&devices](unsigned id, auto member) {
        return IsAnyWanted({id}) && std::ranges::any_of(devices, [member](const GpuDevice& device) {
                   return !IsKnown(device.record.*member);
               });
    };
    const bool isNeeded = lacks(GpuMemoryId, &GpuInfo::videoMemory) || lacks(GpuChipId, &GpuInfo::chipType) ||
                          lacks(GpuDacId, &GpuInfo::dacType);
    if (!isNeeded && (isNamed || !devices.empty()))
        return;
    std::vector<GpuInfo> adapters;
    probes.dxDiag.GetGpuInfo(adapters);
    std::erase_if(adapters, &IsWithoutId);
    for (const GpuInfo& adapter : WithoutForeign(adapters)) {
        // DxDiag lists an adapter once for each of its monitors; these are not further adapters.
        bool isKnown = isNamed;
        for (GpuDevice& device : devices) {
            if (!IsSame(device.record, adapter))
                continue;
            isKnown = true;
            GpuFacts.Merge(device, adapter, L"DxDiag");
        }
        if (!isKnown)
            GpuFacts.Merge(devices.emplace_back(), adapter, L"DxDiag");
    }
}

const DXGI::Adapter* GraphicsAdapters::FindInterface(const GpuDevice& device) const
{
    const auto found = std::ranges::find_if(interfaces, [&device](const DXGI::Adapter& adapter) {
        return !device.record.luid.empty() && adapter.info.luid == device.record.luid;
    });
    return found != interfaces.end() ? &*found : nullptr;
}

}  // namespace kel
