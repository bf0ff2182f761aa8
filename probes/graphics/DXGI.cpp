#include "probes/graphics/DXGI.h"

#include <utility>

#include "diag/ProcessInstance.h"
#include "probes/graphics/AdapterKind.h"
#include "probes/graphics/AdapterNumbers.h"
#include "probes/graphics/DriverCall.h"
#include "values/Junk.h"

namespace kel {

namespace {

constexpr UINT MaxDxgiAdapters = 16;
constexpr UINT RemoteFlag = 1;  // DXGI_ADAPTER_FLAG_REMOTE
constexpr UINT SoftwareFlag = 2;

std::optional<Version> DriverModel(UINT thousandths)
{
    if (thousandths == 0)
        return {};
    return Version(std::to_wstring(thousandths / 1000) + L"." + std::to_wstring(thousandths % 1000 / 100));
}

}  // namespace

DXGI& DXGI::Instance()
{
    return ProcessInstance<DXGI>();
}

DXGI::DXGI(GraphicsFunctions newFunctions) : functions(std::move(newFunctions)) {}

std::vector<DXGI::Adapter> DXGI::ListAdapters() const
{
    std::vector<Adapter> adapters;
    Attempt(L"Error in DXGI detection.", [&] {
        Microsoft::WRL::ComPtr<IDXGIFactory1> factory;
        CallDriver(L"CreateDXGIFactory1", L"", LogWarning, [&] {
            return functions.createDxgiFactory(__uuidof(IDXGIFactory1),
                                               reinterpret_cast<void**>(factory.ReleaseAndGetAddressOf()));
        });
        Microsoft::WRL::ComPtr<IDXGIAdapter1> adapter;
        for (UINT index = 0; factory && index < MaxDxgiAdapters &&
                             SUCCEEDED(factory->EnumAdapters1(index, adapter.ReleaseAndGetAddressOf()));
             ++index) {
            DXGI_ADAPTER_DESC1 found = {};
            if (SUCCEEDED(adapter->GetDesc1(&found)))
                adapters.push_back({Read(found), adapter});
        }
    });
    return adapters;
}

GpuInfo DXGI::Read(const DXGI_ADAPTER_DESC1& found) const
{
    GpuInfo info;
    info.luid = LuidText(found.AdapterLuid);
    info.description =
        Name(TidyText({found.Description, wcsnlen(found.Description, std::size(found.Description))}));
    info.deviceId = DeviceID::FromNumbers(found.VendorId, found.DeviceId, found.SubSysId, found.Revision);
    info.videoMemory = KnownSize(found.DedicatedVideoMemory);
    info.sharedMemory = KnownSize(found.SharedSystemMemory);
    info.driverModel = DriverModel(AskDriverModel(functions.askKernel, found.AdapterLuid));
    info.hasDirect3D = true;
    info.isIntegrated = functions.isIntegratedByDxCore(found.AdapterLuid);
    if (!info.isIntegrated)
        info.isIntegrated = IsIntegratedByKernel(functions.askKernel, found.AdapterLuid);
    info.isSoftware = (found.Flags & (RemoteFlag | SoftwareFlag)) != 0;
    WriteLog(LogTrace, L"DXGI: ", info.description.ToString(), L" ", info.deviceId.ToString(), L" ",
             found.DedicatedVideoMemory, L" ", found.SharedSystemMemory, L" flags ", found.Flags);
    return info;
}

std::optional<Version> DXGI::GetDriverVersion(const Adapter& adapter)
{
    LARGE_INTEGER version = {};
    const HRESULT result =
        CallDriver(L"CheckInterfaceSupport", adapter.info.description.ToString(), LogWarning,
                   [&] { return adapter.adapter->CheckInterfaceSupport(__uuidof(IDXGIDevice), &version); });
    return SUCCEEDED(result) ? DriverVersion(static_cast<std::uint64_t>(version.QuadPart)) : std::nullopt;
}

}  // namespace kel
