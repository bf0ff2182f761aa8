#pragma once

#include <d3d10_1.h>
#include <d3d11.h>
#include <d3d12.h>
#include <d3d9.h>
#include <dxdiag.h>
#include <dxgi.h>
#include <windows.h>

#include <boost/function.hpp>
#include <optional>
#include <string>

namespace kel {

/// The entry points of the graphics libraries; a test replaces them.
struct GraphicsFunctions {
    boost::function<HRESULT(REFIID, void**)> createDxgiFactory;      ///< CreateDXGIFactory1
    boost::function<HRESULT(UINT, IDirect3D9Ex**)> createDirect3D9;  ///< Direct3DCreate9Ex
    boost::function<decltype(D3D10CreateDevice1)> createDevice10;
    boost::function<decltype(D3D11CreateDevice)> createDevice11;
    boost::function<decltype(D3D12CreateDevice)> createDevice12;
    boost::function<HRESULT(REFCLSID, REFIID, void**)> getDxDiagClass;  ///< dxdiagn's DllGetClassObject
    boost::function<UINT(LUID, UINT)> askKernel;  ///< D3DKMTQueryAdapterInfo; 0 without an answer
    /// Whether an adapter is part of the processor's chip, by DXCore; nullopt before Windows 10 2004.
    boost::function<std::optional<bool>(LUID)> isIntegratedByDxCore;
    /// The first 64 KB of a file on a fixed disk; empty when it cannot be read.
    boost::function<std::string(const std::wstring& path)> readFile;
    boost::function<bool(const wchar_t*)> hasLibrary;  ///< whether the system's folder has a file of the name
    boost::function<void(OSVERSIONINFOW&)>
        getVersion;  ///< RtlGetVersion, as GetVersionEx depends on the host

    /// The system's own. A library is loaded at the first call of its function, from the system's folder, and
    /// stays loaded: unloading graphics libraries crashes hosts. A function that is missing answers
    /// E_NOTIMPL.
    static GraphicsFunctions OfSystem();
};

}  // namespace kel
