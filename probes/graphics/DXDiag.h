#pragma once

#include <vector>

#include "probes/Source.h"
#include "probes/graphics/GpuInfo.h"
#include "probes/graphics/GraphicsFunctions.h"

namespace kel {

/// Reads the display devices from DxDiag's provider ("dxdiagn.dll"). It takes half a second, loads each
/// driver and leaves a thread behind.
class DXDiag : public Source {
public:
    static DXDiag& Instance();

    explicit DXDiag(GraphicsFunctions newFunctions = GraphicsFunctions::OfSystem());

    /// Appends a record for each display device (an adapter has one for each monitor): name, id, memory,
    /// driver version, driver model, chip type and DAC type.
    void GetGpuInfo(std::vector<GpuInfo>& adapters) const;

private:
    GraphicsFunctions functions;
};

}  // namespace kel
