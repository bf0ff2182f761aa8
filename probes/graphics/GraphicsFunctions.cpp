#include "probes/graphics/GraphicsFunctions.h"

#include <string>

#include "platform/Library.h"
#include "probes/graphics/AdapterKind.h"
#include "probes/graphics/VulkanManifest.h"

namespace kel {

namespace {

/// Looks the function up when it is called, so that a library that is not needed is not loaded.
template <typename... Arguments>
boost::function<HRESULT(Arguments...)> Late(const wchar_t* library, const char* name)
{
    return [library, name](Arguments... arguments) {
        auto* const function = PermanentFunction<HRESULT WINAPI(Arguments...)>(library, name);
        return function != nullptr ? function(arguments...) : E_NOTIMPL;
    };
}

/// The same with the type of the function's declaration.
template <typename... Arguments>
boost::function<HRESULT(Arguments...)> Late(const wchar_t* library, const char* name,
                                            HRESULT(WINAPI*)(Arguments...))
{
    return Late<Arguments...>(library, name);
}

bool HasLibrary(const wchar_t* name)
{
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetSystemDirectoryW(path.data(), MAX_PATH));
    return GetFileAttributesW((path + L'\\' + name).c_str()) != INVALID_FILE_ATTRIBUTES;
}

void GetVersion(OSVERSIONINFOW& version)
{
    auto* const get = PermanentFunction<LONG WINAPI(OSVERSIONINFOW*)>(L"ntdll.dll", "RtlGetVersion");
    version.dwOSVersionInfoSize = sizeof(version);
    if (get != nullptr)
        get(&version);
}

}  // namespace

GraphicsFunctions GraphicsFunctions::OfSystem()
{
    return {Late<REFIID, void**>(L"dxgi.dll", "CreateDXGIFactory1"),
            Late<UINT, IDirect3D9Ex**>(L"d3d9.dll", "Direct3DCreate9Ex"),
            Late(L"d3d10_1.dll", "D3D10CreateDevice1", decltype (&D3D10CreateDevice1)()),
            Late(L"d3d11.dll", "D3D11CreateDevice", decltype (&D3D11CreateDevice)()),
            Late(L"d3d12.dll", "D3D12CreateDevice", decltype (&D3D12CreateDevice)()),
            Late<REFCLSID, REFIID, void**>(L"dxdiagn.dll", "DllGetClassObject"),
            &AskKernel,
            &IsIntegratedByDxCore,
            &ReadSmallFile,
            &HasLibrary,
            &GetVersion};
}

}  // namespace kel
