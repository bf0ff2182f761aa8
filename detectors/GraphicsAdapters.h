#pragma once

#include <boost/core/noncopyable.hpp>
#include <boost/function.hpp>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "detectors/GpuFacts.h"
#include "diag/SourceFailures.h"
#include "probes/graphics/DXDiag.h"
#include "probes/graphics/DXGI.h"
#include "probes/graphics/DirectX_10.h"
#include "probes/graphics/DirectX_11.h"
#include "probes/graphics/DirectX_12.h"
#include "probes/graphics/DirectX_8.h"
#include "probes/graphics/DirectX_9.h"

namespace kel {

/// The probes of the graphics adapters, cheap ones before costly ones.
struct GraphicsProbes {
    using List = boost::function<void(std::vector<GpuInfo>&)>;

    const DXGI& dxgi;
    List readCache;    ///< what Windows has cached about them
    List listDevices;  ///< the Setup API's display adapters
    const DirectX_8& directX8;
    const DirectX_9& directX9;
    const DirectX_10& directX10;
    const DirectX_11& directX11;
    const DirectX_12& directX12;
    const DXDiag& dxDiag;
    GraphicsFunctions functions;  ///< for facts that no probe has

    static GraphicsProbes OfSystem();
};

/// The graphics adapters of the machine, merged from all probes. They are listed once, for all detectors that
/// need them.
class GraphicsAdapters : boost::noncopyable {
public:
    static GraphicsAdapters& Instance();

    explicit GraphicsAdapters(GraphicsProbes newProbes = GraphicsProbes::OfSystem());

    /// The adapters that are hardware, or that a virtual machine offers; first the one that a program would
    /// use. A Direct3D device and DxDiag load a driver's code, and are used only when the current
    /// session wants a fact that needs them, or when no cheaper source names an adapter. DXGI may load a
    /// driver as well, for a driver version that no other source has.
    const std::vector<GpuDevice>& List();

    /// Whether Direct3D works on one of them, as far as it was asked.
    bool HasDirect3D();

    /// The tier of ray tracing of the first adapter, such as 1.1, and 0.0 for one that has none; nullopt when
    /// it is not wanted or unknown.
    std::optional<Version> RayTracing() { return List(), rayTracing; }

    const GraphicsProbes& Probes() const { return probes; }

private:
    using Devices = std::vector<GpuDevice>;

    static bool IsAnyWanted(std::initializer_list<unsigned> ids);

    void Read();
    void ListCheaply(Devices& devices);
    void ListByDrivers(Devices& devices) const;
    void AskForLevels(Devices& devices) const;
    void AskForLevel(GpuDevice& device, const DXGI::Adapter& found) const;
    void AskForFirst(GpuDevice& device);
    void AskForShaderModel(GpuDevice& device) const;
    void AskDxDiag(Devices& devices) const;
    const DXGI::Adapter* FindInterface(const GpuDevice& device) const;

    GraphicsProbes probes;
    std::vector<DXGI::Adapter> interfaces;  // while they are being listed
    Devices listed;
    Failures failures;     // of the listing, for each detector that asks
    bool isNamed = false;  // whether a cheap source names an adapter, even an excluded one
    std::optional<Version> rayTracing;
    bool isDone = false;
};

}  // namespace kel
