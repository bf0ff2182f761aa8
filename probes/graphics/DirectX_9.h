#pragma once

#include <vector>

#include "probes/graphics/Direct3DSource.h"
#include "probes/graphics/GpuInfo.h"

namespace kel {

/// Direct3D 9 ("d3d9.dll"): lists the adapters with what their drivers say of themselves, without a device.
class DirectX_9 : public Direct3DSource {
public:
    static DirectX_9& Instance();

    explicit DirectX_9(GraphicsFunctions newFunctions = GraphicsFunctions::OfSystem());

    /// Appends the adapters, at most 16, each once however many monitors it drives: name, id, driver version
    /// (`IDirect3D9Ex::GetAdapterIdentifier`), and the level and the model of its shaders (`GetDeviceCaps`).
    void GetGpuInfo(std::vector<GpuInfo>& adapters) const;
};

}  // namespace kel
