#pragma once

#include <wrl/client.h>

#include <vector>

#include "probes/Source.h"
#include "probes/graphics/GpuInfo.h"
#include "probes/graphics/GraphicsFunctions.h"

namespace kel {

/// Lists the graphics adapters by DXGI ("dxgi.dll"), without creating a device.
class DXGI : public Source {
public:
    /// An adapter, and the interface through which Direct3D is asked for it.
    struct Adapter {
        GpuInfo info;
        Microsoft::WRL::ComPtr<IDXGIAdapter1> adapter;
    };

    static DXGI& Instance();

    explicit DXGI(GraphicsFunctions newFunctions = GraphicsFunctions::OfSystem());

    /// The adapters in DXGI's order, at most 16, with those that draw by software marked: name, id, memory
    /// (`IDXGIAdapter1::GetDesc1`), driver model, and whether the system knows them as integrated.
    std::vector<Adapter> ListAdapters() const;

    /// The driver's version (`IDXGIAdapter::CheckInterfaceSupport`), for which the driver may be loaded;
    /// nullopt when the call fails.
    static std::optional<Version> GetDriverVersion(const Adapter& adapter);

private:
    GpuInfo Read(const DXGI_ADAPTER_DESC1& found) const;

    GraphicsFunctions functions;
};

}  // namespace kel
