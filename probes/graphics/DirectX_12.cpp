#include "probes/graphics/DirectX_12.h"

#include <wrl/client.h>

#include <algorithm>

#include "diag/ProcessInstance.h"
#include "probes/graphics/DriverCall.h"

namespace kel {

namespace {

constexpr const wchar_t* Create = L"D3D12CreateDevice";
constexpr auto LowestLevel = D3D_FEATURE_LEVEL_11_0;
/// By number: some platforms' headers lack the newest ones.
constexpr std::uint32_t FurtherLevels[] = {0xb100, 0xc000, 0xc100, 0xc200};
constexpr std::uint32_t HighestModel = 0x69;
constexpr std::uint32_t LowestModel = 0x51;

}  // namespace

DirectX_12& DirectX_12::Instance()
{
    return ProcessInstance<DirectX_12>();
}

DirectX_12::DirectX_12(GraphicsFunctions newFunctions) : Direct3DSource(std::move(newFunctions), L"d3d12.dll")
{
}

std::uint32_t DirectX_12::GetFeatureLevel(IUnknown* adapter, const std::wstring& name,
                                          std::uint32_t known) const
{
    const auto takes = [&](std::uint32_t level, LogLevel failureLevel) {
        return SUCCEEDED(CallDriver(Create, name, failureLevel, [&] {
            return functions.createDevice12(adapter, static_cast<D3D_FEATURE_LEVEL>(level),
                                            __uuidof(ID3D12Device), nullptr);
        }));
    };
    if (!takes(LowestLevel, LogWarning))
        return 0;
    std::uint32_t highest = std::max<std::uint32_t>(LowestLevel, known);
    for (const std::uint32_t level : FurtherLevels) {
        if (level <= known)
            continue;
        if (!takes(level, LogTrace))
            break;
        highest = level;
    }
    return highest;
}

void DirectX_12::WithDevice(IUnknown* adapter, const std::wstring& name,
                            const boost::function<void(ID3D12Device&)>& ask) const
{
    CallDriver(Create, name, LogWarning, [&] {
        Microsoft::WRL::ComPtr<ID3D12Device> device;
        const HRESULT result =
            functions.createDevice12(adapter, LowestLevel, IID_PPV_ARGS(device.ReleaseAndGetAddressOf()));
        if (device)
            ask(*device.Get());
        return result;
    });
}

std::uint32_t DirectX_12::GetShaderModel(IUnknown* adapter, const std::wstring& name) const
{
    std::uint32_t model = 0;
    WithDevice(adapter, name, [&model](ID3D12Device& device) {
        // A runtime refuses a query about a model that it does not know.
        for (std::uint32_t asked = HighestModel; model == 0 && asked >= LowestModel; --asked) {
            D3D12_FEATURE_DATA_SHADER_MODEL data = {static_cast<D3D_SHADER_MODEL>(asked)};
            if (SUCCEEDED(device.CheckFeatureSupport(D3D12_FEATURE_SHADER_MODEL, &data, sizeof(data))))
                model = data.HighestShaderModel;
        }
    });
    return model;
}

std::optional<std::uint32_t> DirectX_12::GetRayTracingTier(IUnknown* adapter, const std::wstring& name) const
{
    std::optional<std::uint32_t> tier;
    WithDevice(adapter, name, [&tier](ID3D12Device& device) {
        D3D12_FEATURE_DATA_D3D12_OPTIONS5 options = {};
        if (SUCCEEDED(device.CheckFeatureSupport(D3D12_FEATURE_D3D12_OPTIONS5, &options, sizeof(options))))
            tier = static_cast<std::uint32_t>(options.RaytracingTier);
    });
    return tier;
}

}  // namespace kel
