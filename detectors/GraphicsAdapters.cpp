#include "detectors/GraphicsAdapters.h"

#include <algorithm>
#include <utility>

#include "detectors/DirectXFacts.h"
#include "detectors/GpuJoin.h"
#include "detectors/GpuRules.h"
#include "diag/ProcessInstance.h"
#include "probes/graphics/AdapterCache.h"
#include "probes/graphics/VulkanManifest.h"
#include "probes/setup/SetupLib.h"
#include "values/StableSort.h"

namespace kel {

namespace {

constexpr const wchar_t* FromCache = L"the adapter cache";

/// Only those of DxDiag's facts that depend on what is wanted.
GpuInfo OnlyGated(const GpuInfo& adapter)
{
    GpuInfo gated;
    gated.videoMemory = adapter.videoMemory;
    gated.chipType = adapter.chipType;
    gated.dacType = adapter.dacType;
    return gated;
}

void Rank(std::vector<GpuDevice>& devices)
{
    for (GpuDevice& device : devices)
        FinishGpuInfo(device.record);
    SortStably(devices, &IsBetterAdapter, &GpuDevice::record);
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
    if (!isDone)
        Read();
    FailureScope::Note(failures);
    return listed;
}

void GraphicsAdapters::Read()
{
    const FailureScope scope;
    Devices devices;
    interfaces = probes.dxgi.ListAdapters();
    ListCheaply(devices);
    // The order uses only facts that are always read, so that index 0 is the same for every page.
    if (isNamed)
        Rank(devices);
    else
        ListByDrivers(devices);
    if (!isNamed || IsAnyWanted({GpuLevelId, DirectXLevelId, ShaderModelId}))
        AskForLevels(devices);
    AskDxDiag(devices);
    if (!isNamed)
        Rank(devices);
    if (!devices.empty())
        CollectFailures(devices.front().record.failures, [&] { AskForFirst(devices.front()); });
    interfaces.clear();
    listed = std::move(devices);
    failures = scope.Found();
    isDone = true;
}

bool GraphicsAdapters::HasDirect3D()
{
    return std::ranges::any_of(List(), [this](const GpuDevice& device) {
        return device.record.hasDirect3D && (isNamed || device.record.featureLevel);
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
    for (GpuInfo& adapter : bySetup) {
        if (!adapter.vulkanManifest.empty())
            adapter.vulkanVersion = ReadVulkanVersion(probes.functions.readFile(adapter.vulkanManifest));
    }
    probes.readCache(notes);
    DropRepeated(byDxgi, bySetup);
    isNamed = std::ranges::any_of(byDxgi, &HasName) || std::ranges::any_of(bySetup, &HasName);

    const auto mergeNotes = [&devices](const std::vector<GpuInfo>& merged) {
        for (GpuDevice& device : devices) {
            for (const GpuInfo& note : merged) {
                if (IsNoteOf(device.record, note))
                    GpuFacts.Merge(device, note, FromCache);
            }
        }
    };
    GpuFacts.Join(devices, WithoutExcluded(byDxgi), L"DXGI", &IsSameAdapter);
    std::vector<GpuInfo> first = notes;
    for (GpuInfo& note : first) {  // the Setup API's name and version have priority
        note.description = Name();
        note.driverVersion.reset();
    }
    mergeNotes(first);
    GpuFacts.Join(devices, WithoutExcluded(bySetup), L"the Setup API", &IsSameAdapter);
    mergeNotes(notes);
    for (GpuDevice& device : devices) {
        const DXGI::Adapter* const found = FindInterface(device);
        if (found == nullptr || device.record.driverVersion)
            continue;
        GpuInfo version;
        CollectFailures(version.failures, [&] { version.driverVersion = DXGI::GetDriverVersion(*found); });
        GpuFacts.Merge(device, version, L"DXGI");
    }
}

void GraphicsAdapters::ListByDrivers(Devices& devices) const
{
    std::vector<GpuInfo> adapters;
    if (probes.directX9.IsThere())
        probes.directX9.GetGpuInfo(adapters);
    std::erase_if(adapters, &IsWithoutId);
    GpuFacts.Join(devices, WithoutExcluded(adapters), L"Direct3D 9", &IsSameAdapter);
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
    if (!isNeeded && isNamed)
        return;
    std::vector<GpuInfo> adapters;
    probes.dxDiag.GetGpuInfo(adapters);
    std::erase_if(adapters, &IsWithoutId);
    for (const GpuInfo& adapter : WithoutExcluded(adapters)) {
        // DxDiag lists an adapter once for each of its monitors; these are not further adapters.
        bool isKnown = isNamed;
        for (GpuDevice& device : devices) {
            if (!IsSameAdapter(device.record, adapter))
                continue;
            isKnown = true;
            GpuFacts.Merge(device, isNamed ? OnlyGated(adapter) : adapter, L"DxDiag");
        }
        if (!isKnown)
            GpuFacts.Merge(devices.emplace_back(), adapter, L"DxDiag");
    }
}

bool GraphicsAdapters::IsAnyWanted(std::initializer_list<unsigned> ids)
{
    return std::ranges::any_of(ids, [](unsigned id) { return Session::Current().IsWanted(GroupID(id)); });
}

const DXGI::Adapter* GraphicsAdapters::FindInterface(const GpuDevice& device) const
{
    const auto found = std::ranges::find_if(interfaces, [&device](const DXGI::Adapter& adapter) {
        return !device.record.luid.empty() && adapter.info.luid == device.record.luid;
    });
    return found != interfaces.end() ? &*found : nullptr;
}

}  // namespace kel
