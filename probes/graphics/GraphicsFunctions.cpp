#include "probes/graphics/GraphicsFunctions.h"

#include <string>

#include "platform/ErrorMode.h"
#include "platform/Library.h"

namespace kel {

namespace {

/// A function of a library that never unloads; null when either is missing.
template <typename Function>
Function* FindKept(const wchar_t* library, const char* name)
{
    const ErrorMode quiet;
    const HMODULE module = LoadSystemLibrary(library).release();
    return module != nullptr ? FindFunction<Function>(module, name) : nullptr;
}

/// Looks the function up when it is called, so that a library that is not needed is not loaded.
template <typename... Arguments>
boost::function<HRESULT(Arguments...)> Late(const wchar_t* library, const char* name)
{
    return [library, name](Arguments... arguments) {
        auto* const function = FindKept<HRESULT WINAPI(Arguments...)>(library, name);
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

// The display driver interface in "gdi32.dll", which the platform's headers do not declare.
struct OpenAdapter {
    LUID luid;
    UINT adapter;
};
struct QueryAdapter {
    UINT adapter;
    UINT type;
    void* data;
    UINT size;
};
static_assert(sizeof(OpenAdapter) == 12 && sizeof(QueryAdapter) == 24);
constexpr UINT DriverModelQuery = 13;  // KMTQAITYPE_DRIVERVERSION
constexpr const wchar_t* Kernel = L"gdi32.dll";

/// Asks the kernel for the version of the driver's model, without loading a driver.
UINT GetDriverModel(LUID luid)
{
    using Open = LONG WINAPI(OpenAdapter*);
    using Query = LONG WINAPI(QueryAdapter*);
    using Close = LONG WINAPI(const UINT*);
    auto* const open = FindKept<Open>(Kernel, "D3DKMTOpenAdapterFromLuid");
    auto* const query = FindKept<Query>(Kernel, "D3DKMTQueryAdapterInfo");
    auto* const close = FindKept<Close>(Kernel, "D3DKMTCloseAdapter");
    OpenAdapter opened = {luid, 0};
    if (open == nullptr || query == nullptr || close == nullptr || open(&opened) < 0)
        return 0;
    UINT version = 0;
    QueryAdapter asked = {opened.adapter, DriverModelQuery, &version, sizeof(version)};
    const bool isAnswered = query(&asked) >= 0;
    close(&opened.adapter);
    return isAnswered ? version : 0;
}

bool HasLibrary(const wchar_t* name)
{
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetSystemDirectoryW(path.data(), MAX_PATH));
    return GetFileAttributesW((path + L'\\' + name).c_str()) != INVALID_FILE_ATTRIBUTES;
}

void GetVersion(OSVERSIONINFOW& version)
{
    auto* const get = FindKept<LONG WINAPI(OSVERSIONINFOW*)>(L"ntdll.dll", "RtlGetVersion");
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
            &GetDriverModel,
            &HasLibrary,
            &GetVersion};
}

}  // namespace kel
