#pragma once

#include <boost/function.hpp>
#include <cstdint>
#include <optional>
#include <string>

#include "probes/graphics/Direct3DSource.h"

namespace kel {

/// Direct3D 12 ("d3d12.dll").
class DirectX_12 : public Direct3DSource {
public:
    static DirectX_12& Instance();

    explicit DirectX_12(GraphicsFunctions newFunctions = GraphicsFunctions::OfSystem());

    /// The highest D3D_FEATURE_LEVEL of at least 11.0 that `D3D12CreateDevice` accepts without creating a
    /// device; 0 when the adapter does not support Direct3D 12.
    /// @param name the adapter's name, for the log
    /// @param known a level that the adapter is known to have; lower ones are not tried
    std::uint32_t GetFeatureLevel(IUnknown* adapter, const std::wstring& name, std::uint32_t known) const;

    /// The highest D3D_SHADER_MODEL (0x66 is 6.6) of a device (`ID3D12Device::CheckFeatureSupport`), which is
    /// created for the call and released at once. 0 when it is unknown.
    std::uint32_t GetShaderModel(IUnknown* adapter, const std::wstring& name) const;

    /// The D3D12_RAYTRACING_TIER (11 is 1.1, 0 none) of such a device; nullopt when it is unknown.
    std::optional<std::uint32_t> GetRayTracingTier(IUnknown* adapter, const std::wstring& name) const;

private:
    /// Creates a device, calls a function with it and releases it.
    void WithDevice(IUnknown* adapter, const std::wstring& name,
                    const boost::function<void(ID3D12Device&)>& ask) const;
};

}  // namespace kel
