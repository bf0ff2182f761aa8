#pragma once

#include "detectors/GraphicsAdapters.h"
#include "support/FakeGraphics.h"
#include "support/Machines.h"

namespace kel::test {

/// A machine's graphics cards behind the graphics interfaces, and a list of adapters that asks all probes.
class PlantedGraphics {
public:
    explicit PlantedGraphics(const Machine& machine);

    FakeGraphics fake;
    const GraphicsFunctions functions{fake.Functions()};
    const DXGI dxgi{functions};
    const DirectX_8 directX8{functions};
    const DirectX_9 directX9{functions};
    const DirectX_10 directX10{functions};
    const DirectX_11 directX11{functions};
    const DirectX_12 directX12{functions};
    const DXDiag dxDiag{functions};
    GraphicsAdapters adapters;
};

}  // namespace kel::test
