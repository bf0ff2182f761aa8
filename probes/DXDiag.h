#pragma once

#include <vector>

#include "probes/GpuInfo.h"
#include "probes/GraphicsFunctions.h"
#include "probes/Source.h"

namespace kel {

/// What DxDiag's provider ("dxdiagn.dll") says of the display devices. It takes half a second, loads each
/// driver and leaves a thread behind.
class DXDiag : public Source {
public:
    static DXDiag& Instance();

    explicit DXDiag(GraphicsFunctions newFunctions = GraphicsFunctions::OfSystem());

    /// Appends a record for each display device, of which an adapter has one for each monitor: name, id,
    /// memory, driver version, driver model, chip type and DAC type.
    void GetGpuInfo(std::vector<GpuInfo>& adapters) const;

private:
    GraphicsFunctions functions;
};

}  // namespace kel
