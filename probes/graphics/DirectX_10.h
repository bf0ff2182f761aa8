#pragma once

#include <cstdint>
#include <string>

#include "probes/graphics/Direct3DSource.h"

namespace kel {

/// Direct3D 10 ("d3d10.dll"; levels are asked of "d3d10_1.dll").
class DirectX_10 : public Direct3DSource {
public:
    static DirectX_10& Instance();

    explicit DirectX_10(GraphicsFunctions newFunctions = GraphicsFunctions::OfSystem());

    /// The highest D3D_FEATURE_LEVEL, up to 10.1, for which `D3D10CreateDevice1` creates a device, which is
    /// released at once; 0 for none.
    /// @param name the adapter's name, for the log
    std::uint32_t GetFeatureLevel(IDXGIAdapter* adapter, const std::wstring& name) const;
};

}  // namespace kel
