#include "kit/RecordedGraphics.h"

#include <algorithm>
#include <cstring>

#include "detectors/GpuJoin.h"
#include "kit/Text.h"
#include "platform/RegistryNames.h"
#include "probes/graphics/AdapterCache.h"
#include "probes/graphics/DXGI.h"
#include "probes/graphics/GpuInfo.h"
#include "probes/graphics/VulkanManifest.h"
#include "probes/setup/SetupLib.h"
#include "service/Utf8.h"
#include "values/Text.h"

namespace kel::kit {

namespace {

using Lines = std::vector<std::string>;

constexpr UINT DriverModelRequest = 13;
constexpr UINT KindRequest = 15;
constexpr UINT HybridIntegrated = 1U << 5, HybridDiscrete = 1U << 4;
constexpr DWORD MaxNotes = 256;
constexpr std::size_t FirstFreePlace = 1000;  // of notes about adapters that DXGI does not list

std::string Megabytes(std::uint64_t bytes)
{
    return std::to_string((bytes + (1U << 19)) >> 20);
}

std::uint64_t KeyOf(const LUID& luid)
{
    return static_cast<std::uint64_t>(static_cast<std::uint32_t>(luid.HighPart)) << 32 | luid.LowPart;
}

/// The driver's version of an adapter for which no other source has one, as the detectors then ask DXGI, too.
std::string DriverOf(const DXGI::Adapter& adapter, const std::vector<GpuInfo>& devices,
                     const std::vector<GpuInfo>& notes)
{
    const bool isKnown =
        std::ranges::any_of(devices,
                            [&](const GpuInfo& device) {
                                return device.driverVersion && IsSameAdapter(adapter.info, device);
                            }) ||
        std::ranges::any_of(
            notes, [&](const GpuInfo& note) { return note.driverVersion && IsNoteOf(adapter.info, note); });
    const std::optional<Version> version = isKnown ? std::nullopt : DXGI::GetDriverVersion(adapter);
    return version ? Hex(version->Quantity(), 16) : "";
}

/// Adds a line for each adapter that DXGI lists.
/// @param devices the Setup API's adapters
/// @return their keys, in DXGI's order
std::vector<std::uint64_t> RecordCards(const GraphicsFunctions& functions,
                                       const std::vector<GpuInfo>& devices, DeviceMasks& masks, Lines& lines)
{
    std::vector<GpuInfo> notes;
    ReadAdapterCache(notes);
    std::vector<std::uint64_t> keys;
    std::string all;
    for (const DXGI::Adapter& adapter : DXGI(functions).ListAdapters()) {
        DXGI_ADAPTER_DESC1 found = {};
        if (FAILED(adapter.adapter->GetDesc1(&found)))
            continue;
        const std::string key = "card" + std::to_string(keys.size());
        const UINT kind = functions.askKernel(found.AdapterLuid, KindRequest);
        const std::optional<bool> isIntegrated = functions.isIntegratedByDxCore(found.AdapterLuid);
        lines.push_back(
            "card key=" + key + Field("name", masks.Text(found.Description)) +
            Field("vendor", Hex(found.VendorId, 4)) + Field("device", Hex(found.DeviceId, 4)) +
            Field("subsystem", Hex(found.SubSysId, 8)) +
            Field("dedicated", Megabytes(found.DedicatedVideoMemory)) +
            Field("shared", Megabytes(found.SharedSystemMemory)) + Field("flags", Hex(found.Flags, 1)) +
            Field("driver", DriverOf(adapter, devices, notes)) +
            Field("wddm", std::to_string(functions.askKernel(found.AdapterLuid, DriverModelRequest))) +
            Field("dxcore", !isIntegrated   ? ""
                            : *isIntegrated ? "yes"
                                            : "no") +
            Field("kernel", (kind & HybridIntegrated) != 0 ? "yes"
                            : (kind & HybridDiscrete) != 0 ? "no"
                                                           : ""));
        all += (all.empty() ? "has " : "|") + key;
        keys.push_back(KeyOf(found.AdapterLuid));
    }
    if (!all.empty())
        lines.push_back(all);
    return keys;
}

/// A number of the cache; 0 when it is missing.
std::uint64_t NumberIn(HKEY key, const wchar_t* name)
{
    const std::optional<RegistryValue> value = ReadValue(key, name);
    std::uint64_t number = 0;
    if (value && value->bytes.size() <= sizeof(number) && !value->IsString())
        std::memcpy(&number, value->bytes.data(), value->bytes.size());
    return number;
}

/// The registry's cache of adapters. An entry gets the place of its adapter, as the adapters' keys change
/// with each start.
void RecordNotes(const std::vector<std::uint64_t>& cards, DeviceMasks& masks, Lines& lines)
{
    const OwnedKey cache =
        OpenKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\DirectX", KEY_READ | KEY_WOW64_64KEY);
    if (!cache)
        return;
    std::size_t place = FirstFreePlace;
    for (const std::wstring& name : ListSubkeys(cache.get(), MaxNotes)) {
        const OwnedKey key = OpenKey(cache.get(), name.c_str(), KEY_READ);
        const std::uint64_t luid = key ? NumberIn(key.get(), L"AdapterLuid") : 0;
        if (luid == 0)
            continue;
        const auto card = std::ranges::find(cards, luid);
        const auto number = [&key](const wchar_t* value) { return NumberIn(key.get(), value); };
        lines.push_back(
            "note place=" +
            std::to_string(card != cards.end() ? static_cast<std::size_t>(card - cards.begin()) + 1
                                               : ++place) +
            Field("vendor", Hex(number(L"VendorId"), 4)) + Field("device", Hex(number(L"DeviceId"), 4)) +
            Field("level11", Hex(number(L"MaxD3D11FeatureLevel"), 4)) +
            Field("megabytes", Megabytes(number(L"DedicatedVideoMemory"))) +
            Field("level12", Hex(number(L"MaxD3D12FeatureLevel"), 4)) +
            Field("name", masks.Text(DriverText(key.get(), L"Description"))) +
            Field("driver", Hex(number(L"DriverVersion"), 16)));
    }
}

/// @param known what the probe made of the device: for the id, which can come from a file of the driver
std::string DeviceLine(const SetupDevice& device, HKEY driver, const GpuInfo& known, DeviceMasks& masks)
{
    const auto text = [&](const wchar_t* name) { return masks.Text(DriverText(driver, name)); };
    return "graphics instance=" + masks.Instance(device.InstanceId()) +
           Field("name", masks.Text(device.Text(SPDRP_DEVICEDESC).ToString())) +
           Field("version", known.driverVersion ? masks.Version(known.driverVersion->ToString()) : "") +
           Field("matching", masks.Text(known.deviceId.ToString())) +
           Field("qword-megabytes", known.driverMemory ? Megabytes(known.driverMemory->Bytes()) : "") +
           Field("date", text(L"DriverDate")) + Field("vulkan", text(L"VulkanDriverName")) +
           Field("radeon", masks.Version(DriverText(driver, L"RadeonSoftwareVersion"))) +
           Field("chip", masks.Text(known.chipType.ToString()));
}

void RecordDevices(const GraphicsFunctions& functions, const std::vector<GpuInfo>& known, DeviceMasks& masks,
                   Lines& lines)
{
    std::vector<std::wstring> instances;
    for (const GpuInfo& gpu : known)
        instances.push_back(gpu.instanceId);
    masks.Learn(instances);
    VisitDevices(RecordedClass::Graphics, [&](const SetupDevice& device, HKEY driver) {
        const auto gpu = std::ranges::find(known, device.InstanceId(), &GpuInfo::instanceId);
        if (gpu == known.end())
            return;
        lines.push_back(DeviceLine(device, driver, *gpu, masks));
        const std::optional<Version> vulkan = ReadVulkanVersion(functions.readFile(gpu->vulkanManifest));
        if (vulkan)
            lines.push_back("set file " + masks.Text(gpu->vulkanManifest) +
                            "|{\"ICD\": {\"api_version\": \"" + ToUtf8(vulkan->ToString()) + "\"}}");
    });
}

}  // namespace

Lines RecordGraphics(const DeviceEdges& edges, DeviceMasks& masks)
{
    Lines lines;
    std::vector<GpuInfo> devices;
    SetupLib::Instance().GetGpuInfo(devices);
    const std::vector<std::uint64_t> cards = RecordCards(edges.graphics, devices, masks, lines);
    if (cards.empty())
        return {};
    RecordNotes(cards, masks, lines);
    RecordDevices(edges.graphics, devices, masks, lines);
    return lines;
}

}  // namespace kel::kit
