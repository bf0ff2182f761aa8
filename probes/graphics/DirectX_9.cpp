#include "probes/graphics/DirectX_9.h"

#include <wrl/client.h>

#include <algorithm>

#include "diag/ProcessInstance.h"
#include "probes/graphics/AdapterNumbers.h"
#include "probes/graphics/DriverCall.h"
#include "probes/graphics/FeatureLevel.h"
#include "values/Junk.h"

namespace kel {

namespace {

constexpr UINT MaxDirect3DAdapters = 16;

std::wstring Widen(const char* text, std::size_t size)
{
    const int length = static_cast<int>(strnlen(text, size));
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, length, wide.data(), length);
    return wide;
}

GpuInfo Read(IDirect3D9Ex& direct3D, UINT index)
{
    GpuInfo info;
    D3DADAPTER_IDENTIFIER9 found = {};
    if (SUCCEEDED(direct3D.GetAdapterIdentifier(index, 0, &found))) {
        info.description = Name(TidyText(Widen(found.Description, std::size(found.Description))));
        info.deviceId = DeviceID::FromNumbers(found.VendorId, found.DeviceId, found.SubSysId, found.Revision);
        info.driverVersion = DriverVersion(static_cast<std::uint64_t>(found.DriverVersion.QuadPart));
    }
    LUID luid = {};
    if (SUCCEEDED(direct3D.GetAdapterLUID(index, &luid)))
        info.luid = LuidText(luid);
    D3DCAPS9 caps = {};
    if (SUCCEEDED(direct3D.GetDeviceCaps(index, D3DDEVTYPE_HAL, &caps))) {
        info.featureLevel = LevelVersion(LevelOfPixelShaders(caps.PixelShaderVersion));
        info.shaderModel = ShaderModelOfLevel(info.featureLevel);
        info.hasDirect3D = true;
    }
    return info;
}

}  // namespace

DirectX_9& DirectX_9::Instance()
{
    return ProcessInstance<DirectX_9>();
}

DirectX_9::DirectX_9(GraphicsFunctions newFunctions) : Direct3DSource(std::move(newFunctions), L"d3d9.dll") {}

void DirectX_9::GetGpuInfo(std::vector<GpuInfo>& adapters) const
{
    CallDriver(L"Direct3DCreate9Ex", L"", LogWarning, [&] {
        Microsoft::WRL::ComPtr<IDirect3D9Ex> direct3D;
        const HRESULT result = functions.createDirect3D9(D3D_SDK_VERSION, &direct3D);
        for (UINT index = 0; direct3D && index < std::min(direct3D->GetAdapterCount(), MaxDirect3DAdapters);
             ++index) {
            const GpuInfo info = Read(*direct3D.Get(), index);
            const auto isSame = [&info](const GpuInfo& other) {
                return !info.luid.empty() && info.luid == other.luid;
            };
            if (std::ranges::none_of(adapters, isSame))
                adapters.push_back(info);
        }
        return result;
    });
}

}  // namespace kel
