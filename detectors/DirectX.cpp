#include "detectors/Detectors.h"
#include "detectors/DirectXFacts.h"
#include "detectors/DirectXRules.h"
#include "detectors/GraphicsAdapters.h"
#include "platform/RegistryValue.h"

namespace kel {

namespace {

DirectXInfo ReadRegistry()
{
    constexpr std::size_t MaxValueSize = 256;  // bytes
    std::wstring version;
    if (const OwnedKey key = OpenKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\DirectX", KEY_READ))
        ReadStringValue(key.get(), L"Version", MaxValueSize, version);
    DirectXInfo info;
    info.runtime = RuntimeOfRegistry(version);
    return info;
}

DirectXInfo ReadLibraries(const GraphicsProbes& probes)
{
    DirectXInfo info;
    OSVERSIONINFOW version = {};
    probes.functions.getVersion(version);
    info.runtime =
        RuntimeOfLibraries(probes.functions.hasLibrary, version.dwMajorVersion, version.dwMinorVersion);
    info.has8 = probes.directX8.IsThere();
    info.has9 = probes.directX9.IsThere();
    info.has10 = probes.directX10.IsThere();
    info.has11 = probes.directX11.IsThere();
    info.has12 = probes.directX12.IsThere();
    return info;
}

}  // namespace

bool DirectX::Detect()
{
    return Detect(GraphicsAdapters::Instance());
}

bool DirectX::Detect(GraphicsAdapters& adapters)
{
    return Guarded(L"kel::DirectX::Detect", L"Error in DirectX detection.", [&adapters] {
        DirectXFacts.Store(DirectXInfo());
        decltype(DirectXFacts)::Device merged;
        DirectXFacts.Merge(merged, ReadLibraries(adapters.Probes()), L"the system's folder");
        DirectXFacts.Merge(merged, ReadRegistry(), L"the registry");
        const std::vector<GpuDevice>& devices = adapters.List();
        if (!devices.empty()) {
            const GpuInfo& first = devices.front().record;
            merged.record.featureLevel = first.featureLevel;
            merged.record.shaderModel = first.shaderModel;
            merged.record.driverModel = first.driverModel;
        }
        merged.record.rayTracing = adapters.RayTracing();
        merged.record.works = adapters.HasDirect3D();
        DirectXFacts.Store(merged, L"DirectX");
        if (!devices.empty())
            DirectXFacts.NoteFailures(devices.front().record.failures);
    });
}

StoredFacts DirectX::ListFacts()
{
    return CollectFacts(DirectXFacts);
}

}  // namespace kel
