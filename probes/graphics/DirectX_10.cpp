#include "probes/graphics/DirectX_10.h"

#include <wrl/client.h>

#include "diag/ProcessInstance.h"
#include "probes/graphics/DriverCall.h"

namespace kel {

namespace {

constexpr D3D10_FEATURE_LEVEL1 Levels10[] = {D3D10_FEATURE_LEVEL_10_1, D3D10_FEATURE_LEVEL_10_0,
                                             D3D10_FEATURE_LEVEL_9_3, D3D10_FEATURE_LEVEL_9_2,
                                             D3D10_FEATURE_LEVEL_9_1};

}  // namespace

DirectX_10& DirectX_10::Instance()
{
    return ProcessInstance<DirectX_10>();
}

DirectX_10::DirectX_10(GraphicsFunctions newFunctions) : Direct3DSource(std::move(newFunctions), L"d3d10.dll")
{
}

std::uint32_t DirectX_10::GetFeatureLevel(IDXGIAdapter* adapter, const std::wstring& name) const
{
    for (const D3D10_FEATURE_LEVEL1 level : Levels10) {
        // Unlike its successors, Direct3D 10 cannot answer without creating the device.
        Microsoft::WRL::ComPtr<ID3D10Device1> device;
        const LogLevel failureLevel = level == D3D10_FEATURE_LEVEL_9_1 ? LogWarning : LogTrace;
        const HRESULT result = CallDriver(L"D3D10CreateDevice1", name, failureLevel, [&] {
            return functions.createDevice10(adapter, D3D10_DRIVER_TYPE_HARDWARE, nullptr, 0, level,
                                            D3D10_1_SDK_VERSION, &device);
        });
        if (SUCCEEDED(result))
            return level;
    }
    return 0;
}

}  // namespace kel
