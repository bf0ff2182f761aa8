#include "probes/graphics/AdapterCache.h"

#include <algorithm>

#include "platform/RegistryNames.h"
#include "platform/RegistryValue.h"
#include "probes/Attempt.h"
#include "probes/graphics/AdapterNumbers.h"
#include "probes/graphics/FeatureLevel.h"
#include "values/Hexadecimal.h"
#include "values/Junk.h"

namespace kel {

namespace {

constexpr const wchar_t* CacheKey = L"SOFTWARE\\Microsoft\\DirectX";
constexpr DWORD MaxAdapters = 256;
constexpr std::size_t MaxDescription = 256;  // characters

/// A number of 32 or 64 bits; 0 when the value is missing or of another kind.
std::uint64_t Number(HKEY key, const wchar_t* name)
{
    const std::optional<RegistryValue> value = ReadValue(key, name);
    std::uint64_t number = 0;
    if (value && (value->type == REG_DWORD || value->type == REG_QWORD) &&
        value->bytes.size() <= sizeof(number))
        std::copy(value->bytes.begin(), value->bytes.end(), reinterpret_cast<BYTE*>(&number));
    return number;
}

GpuInfo Read(HKEY key)
{
    const auto small = [key](const wchar_t* name) { return static_cast<std::uint32_t>(Number(key, name)); };
    GpuInfo info;
    if (const std::uint64_t luid = Number(key, L"AdapterLuid"); luid != 0)
        info.luid = LuidText(luid);
    std::wstring name;
    ReadStringValue(key, L"Description", MaxDescription * sizeof(wchar_t), name);
    info.description = Name(TidyText(name));
    if (const std::uint32_t vendor = small(L"VendorId"); vendor != 0)
        info.deviceId =
            DeviceID(L"PCI\\VEN_" + Hexadecimal(vendor, 4) + L"&DEV_" + Hexadecimal(small(L"DeviceId"), 4));
    info.videoMemory = KnownSize(Number(key, L"DedicatedVideoMemory"));
    info.driverVersion = DriverVersion(Number(key, L"DriverVersion"));
    info.featureLevel =
        LevelVersion(std::max(small(L"MaxD3D11FeatureLevel"), small(L"MaxD3D12FeatureLevel")));
    return info;
}

}  // namespace

void ReadAdapterCache(std::vector<GpuInfo>& adapters)
{
    Attempt(L"Error in the adapter cache.", [&adapters] {
        const OwnedKey cache = OpenKey(HKEY_LOCAL_MACHINE, CacheKey, KEY_READ | KEY_WOW64_64KEY);
        if (!cache)
            return;
        for (const std::wstring& name : ListSubkeys(cache.get(), MaxAdapters)) {
            if (const OwnedKey adapter = OpenKey(cache.get(), name.c_str(), KEY_READ))
                adapters.push_back(Read(adapter.get()));
        }
    });
}

}  // namespace kel
