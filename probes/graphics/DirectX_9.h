#pragma once

#include <vector>

#include "probes/graphics/Direct3DSource.h"
#include "probes/graphics/GpuInfo.h"

namespace kel {

/// Direct3D 9 ("d3d9.dll"): lists the adapters with the drivers' own facts, without creating a device.
class DirectX_9 : public Direct3DSource {
public:
    static DirectX_9& Instance();

    explicit DirectX_9(GraphicsFunctions newFunctions = GraphicsFunctions::OfSystem());

    /// Appends at most 16 adapters, each once however many monitors it drives: name, id, driver version
    /// (`IDirect3D9Ex::GetAdapterIdentifier`), feature level and shader model (`GetDeviceCaps`).
    void GetGpuInfo(std::vector<GpuInfo>& adapters) const;
};

}  // namespace kel
