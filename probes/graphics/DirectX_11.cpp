#include "probes/graphics/DirectX_11.h"

#include <span>

#include "diag/ProcessInstance.h"
#include "probes/graphics/DriverCall.h"

namespace kel {

namespace {

constexpr D3D_FEATURE_LEVEL Levels11[] = {
    D3D_FEATURE_LEVEL_12_1, D3D_FEATURE_LEVEL_12_0, D3D_FEATURE_LEVEL_11_1,
    D3D_FEATURE_LEVEL_11_0, D3D_FEATURE_LEVEL_10_1, D3D_FEATURE_LEVEL_10_0,
    D3D_FEATURE_LEVEL_9_3,  D3D_FEATURE_LEVEL_9_2,  D3D_FEATURE_LEVEL_9_1,
};
/// The first level of each list to try: older runtimes refuse a list that has a level unknown to them.
constexpr std::size_t Starts[] = {0, 2, 3};

}  // namespace

DirectX_11& DirectX_11::Instance()
{
    return ProcessInstance<DirectX_11>();
}

DirectX_11::DirectX_11(GraphicsFunctions newFunctions) : Direct3DSource(std::move(newFunctions), L"d3d11.dll")
{
}

std::uint32_t DirectX_11::GetFeatureLevel(IDXGIAdapter* adapter, const std::wstring& name) const
{
    for (const std::size_t start : Starts) {
        const auto levels = std::span(Levels11).subspan(start);
        D3D_FEATURE_LEVEL level = {};
        const HRESULT result = CallDriver(L"D3D11CreateDevice", name, LogWarning, [&] {
            return functions.createDevice11(adapter, D3D_DRIVER_TYPE_UNKNOWN, nullptr, 0, levels.data(),
                                            static_cast<UINT>(levels.size()), D3D11_SDK_VERSION, nullptr,
                                            &level, nullptr);
        });
        if (SUCCEEDED(result))
            return level;
        if (result != E_INVALIDARG)
            break;
    }
    return 0;
}

}  // namespace kel
