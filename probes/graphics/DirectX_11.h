#pragma once

#include <cstdint>
#include <string>

#include "probes/graphics/Direct3DSource.h"

namespace kel {

/// Direct3D 11 ("d3d11.dll").
class DirectX_11 : public Direct3DSource {
public:
    static DirectX_11& Instance();

    explicit DirectX_11(GraphicsFunctions newFunctions = GraphicsFunctions::OfSystem());

    /// The D3D_FEATURE_LEVEL, up to 12.1, that `D3D11CreateDevice` reports without creating a device; 0 for
    /// none.
    /// @param name the adapter's name, for the log
    std::uint32_t GetFeatureLevel(IDXGIAdapter* adapter, const std::wstring& name) const;
};

}  // namespace kel
