#include "probes/graphics/DXDiag.h"

#include <comdef.h>
#include <wrl/client.h>

#include <utility>

#include "diag/ProcessInstance.h"
#include "probes/Variant.h"
#include "probes/graphics/DriverCall.h"
#include "values/Junk.h"

namespace kel {

namespace {

using Microsoft::WRL::ComPtr;
using Container = ComPtr<IDxDiagContainer>;

// Not every platform's libraries define what the header declares.
constexpr GUID ProviderClass = {0xA65B8071, 0x3BFE, 0x4213, {0x9A, 0x5B, 0x49, 0x1D, 0xA4, 0x46, 0x1C, 0xA7}};
constexpr GUID ProviderId = {0x9C6B4CB0, 0x23F8, 0x49CC, {0xA3, 0xED, 0x45, 0xA5, 0x50, 0x00, 0xA6, 0xD2}};
constexpr DWORD MaxNameLength = 256;
constexpr DWORD MaxDevices = 64;

Container Child(IDxDiagContainer& parent, const wchar_t* name)
{
    Container child;
    parent.GetChildContainer(name, &child);
    return child;
}

bool Has(IDxDiagContainer& device, const wchar_t* name)
{
    _variant_t value;
    return SUCCEEDED(device.GetProp(name, &value)) && value.vt != VT_EMPTY;
}

/// A property as text; empty when it is missing or a filler.
std::wstring Text(IDxDiagContainer& device, const wchar_t* name)
{
    _variant_t value;
    return SUCCEEDED(device.GetProp(name, &value)) ? TidyText(ShowVariant(value)) : std::wstring();
}

/// The number in a text such as "0x10de"; 0 when there is none.
std::uint32_t Number(IDxDiagContainer& device, const wchar_t* name)
{
    return static_cast<std::uint32_t>(std::wcstoul(Text(device, name).c_str(), nullptr, 16));
}

DeviceID ReadId(IDxDiagContainer& device)
{
    const std::wstring id =
        DeviceID::FromNumbers(Number(device, L"szVendorId"), Number(device, L"szDeviceId"),
                              Number(device, L"szSubSysId"), Number(device, L"szRevisionId"))
            .ToString();
    // Revision 0 is a valid one; a missing revision is unknown.
    return DeviceID(Text(device, L"szRevisionId").empty() ? id.substr(0, id.find(L"&REV_")) : id);
}

/// The amount in a text such as "3962 MB".
std::optional<Size> Memory(IDxDiagContainer& device, const wchar_t* name)
{
    Size size;
    size.Initialize(Text(device, name).c_str());
    return KnownSize(size.Bytes());
}

GpuInfo Read(IDxDiagContainer& device)
{
    GpuInfo info;
    info.description = Name(Text(device, L"szDescription"));
    info.deviceId = ReadId(device);
    // Old systems have this property instead; it includes the shared memory.
    info.videoMemory = Memory(device, Has(device, L"szDedicatedMemoryEnglish") ? L"szDedicatedMemoryEnglish"
                                                                               : L"szDisplayMemoryEnglish");
    info.driverVersion = KnownVersion(Text(device, L"szDriverVersion"));
    const std::wstring model = Text(device, L"szDriverModel");
    info.driverModel = KnownVersion(model.substr(std::min(model.find_first_of(L"0123456789"), model.size())));
    info.chipType = Name(Text(device, L"szChipType"));
    info.dacType = Name(Text(device, L"szDACType"));
    return info;
}

}  // namespace

DXDiag& DXDiag::Instance()
{
    return ProcessInstance<DXDiag>();
}

DXDiag::DXDiag(GraphicsFunctions newFunctions) : functions(std::move(newFunctions)) {}

void DXDiag::GetGpuInfo(std::vector<GpuInfo>& adapters) const
{
    CallDriver(L"DxDiag", L"", LogWarning, [&]() -> HRESULT {
        // Not through COM's registration, which a registration of the user's can override.
        ComPtr<IClassFactory> factory;
        ComPtr<IDxDiagProvider> provider;
        Container root;
        HRESULT result =
            functions.getDxDiagClass(ProviderClass, IID_PPV_ARGS(factory.ReleaseAndGetAddressOf()));
        if (SUCCEEDED(result))
            result = factory->CreateInstance(nullptr, ProviderId,
                                             reinterpret_cast<void**>(provider.ReleaseAndGetAddressOf()));
        DXDIAG_INIT_PARAMS parameters = {sizeof(parameters), DXDIAG_DX9_SDK_VERSION, FALSE, nullptr};
        if (SUCCEEDED(result))
            result = provider->Initialize(&parameters);
        if (SUCCEEDED(result))
            result = provider->GetRootContainer(&root);
        if (FAILED(result))
            return result;
        const Container devices = Child(*root.Get(), L"DxDiag_DisplayDevices");
        wchar_t name[MaxNameLength] = {};
        for (DWORD index = 0; devices && index < MaxDevices &&
                              SUCCEEDED(devices->EnumChildContainerNames(index, name, MaxNameLength));
             ++index) {
            if (const Container device = Child(*devices.Get(), name))
                adapters.push_back(Read(*device.Get()));
        }
        return result;
    });
}

}  // namespace kel
