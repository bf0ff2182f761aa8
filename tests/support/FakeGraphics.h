// Fake graphics adapters behind the system's own interfaces.
#pragma once

#include <algorithm>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "probes/graphics/GraphicsFunctions.h"
#include "support/FakeObject.h"

namespace kel::test {

/// An adapter as the interfaces report it. Memory is in megabytes.
struct Card {
    std::wstring name;
    UINT vendor, device, subsystem;
    std::size_t dedicated, shared;
    UINT flags;
    UINT level11, level12, model;  ///< the highest that its driver has
    UINT driverModel;
    std::uint64_t version;  ///< of the driver, as DXGI reports it
    std::optional<bool> isIntegratedByDxCore = {}, isIntegratedByKernel = {};
    UINT rayTracing = 0;  ///< its tier; above 100 the device does not say
};

class FakeGraphics {
public:
    explicit FakeGraphics(const std::vector<Card>& cards)
    {
        factory.Answer(
            12, +[](Object* self, UINT index, IDXGIAdapter1** out) -> HRESULT {
                return index < self->owner->adapters.size() ? self->owner->Listed(index).Give(out)
                                                            : HRESULT{DXGI_ERROR_NOT_FOUND};
            });
        for (const Card& card : cards) {
            Object& adapter = adapters.emplace_back(*this);
            adapter.card = card;
            adapter.luid = {static_cast<DWORD>(adapters.size()), 7};
            adapter.Answer(
                9, +[](Object* self, REFIID, LARGE_INTEGER* version) -> HRESULT {
                    version->QuadPart = static_cast<LONGLONG>(self->card.version);
                    return self->card.version != 0 ? S_OK : HRESULT{DXGI_ERROR_UNSUPPORTED};
                });
            adapter.Answer(
                10, +[](Object* self, DXGI_ADAPTER_DESC1* out) -> HRESULT {
                    wcscpy(out->Description, self->card.name.c_str());
                    out->VendorId = self->card.vendor;
                    out->DeviceId = self->card.device;
                    out->SubSysId = self->card.subsystem;
                    out->Revision = 0xA1;
                    out->DedicatedVideoMemory = self->card.dedicated << 20;
                    out->SharedSystemMemory = self->card.shared << 20;
                    out->AdapterLuid = self->luid;
                    out->Flags = self->card.flags;
                    return S_OK;
                });
        }
        SetUpDirect3D9();
        device12.Answer(
            13, +[](Object* self, D3D12_FEATURE feature, D3D_SHADER_MODEL* model, UINT) -> HRESULT {
                if (feature == D3D12_FEATURE_D3D12_OPTIONS5) {
                    reinterpret_cast<D3D12_FEATURE_DATA_D3D12_OPTIONS5*>(model)->RaytracingTier =
                        static_cast<D3D12_RAYTRACING_TIER>(self->card.rayTracing);
                    return self->card.rayTracing < 100 ? S_OK : E_INVALIDARG;
                }
                if (*model > 0x66)
                    return E_INVALIDARG;  // a runtime that does not know later ones
                *model = static_cast<D3D_SHADER_MODEL>(self->card.model);
                return S_OK;
            });
        SetUpDxDiag();
    }

    /// Functions that answer for the adapters, and count what would load a driver.
    GraphicsFunctions Functions()
    {
        GraphicsFunctions functions;
        functions.createDxgiFactory = [this](REFIID, void** out) -> HRESULT {
            return hasDxgi && !adapters.empty() ? factory.Give(out) : HRESULT{DXGI_ERROR_UNSUPPORTED};
        };
        functions.createDirect3D9 = [this](UINT, IDirect3D9Ex** out) {
            ++calls[L"9"];
            return broken == L"Direct3DCreate9Ex" ? HRESULT{D3DERR_NOTAVAILABLE} : direct3D9.Give(out);
        };
        functions.createDevice10 = [this](IDXGIAdapter* adapter, auto, auto, auto, UINT level, auto,
                                          auto out) {
            ++calls[L"10"];
            return level <= Find(adapter).level11 ? device10.Give(out) : HRESULT{DXGI_ERROR_UNSUPPORTED};
        };
        functions.createDevice11 = [this](IDXGIAdapter* adapter, D3D_DRIVER_TYPE type, auto, auto,
                                          const D3D_FEATURE_LEVEL* levels, UINT count, auto,
                                          ID3D11Device** device, D3D_FEATURE_LEVEL* level, auto) -> HRESULT {
            ++calls[L"11"];
            const Card& card = Find(adapter);
            if (broken == L"D3D11CreateDevice")
                throw 11;
            if (*levels > newestLevel || type != D3D_DRIVER_TYPE_UNKNOWN || device != nullptr)
                return E_INVALIDARG;
            const auto* const found =
                std::find_if(levels, levels + count, [&card](UINT asked) { return asked <= card.level11; });
            if (found == levels + count)
                return DXGI_ERROR_UNSUPPORTED;
            *level = *found;
            return S_FALSE;
        };
        functions.createDevice12 = [this](IUnknown* adapter, UINT level, REFIID, void** device) -> HRESULT {
            ++calls[L"12"];
            device12.card = Find(adapter);
            if (level > device12.card.level12)
                return DXGI_ERROR_UNSUPPORTED;
            return device == nullptr ? S_FALSE : broken == L"device 12" ? E_FAIL : device12.Give(device);
        };
        functions.getDxDiagClass = [this](REFCLSID id, REFIID, void** out) {
            ++calls[L"DxDiag"];
            return id == GUID{0xA65B8071, 0x3BFE, 0x4213, {0x9A, 0x5B, 0x49, 0x1D, 0xA4, 0x46, 0x1C, 0xA7}}
                       ? diagnosisClass.Give(out)
                       : HRESULT{CLASS_E_CLASSNOTAVAILABLE};
        };
        functions.askKernel = [this](LUID luid, UINT type) -> UINT {
            const Card& card = At(luid.LowPart - 1).card;
            if (type == 13 && luid.HighPart == 7)
                return card.driverModel;
            return type == 15 && card.isIntegratedByKernel ? 1U << (*card.isIntegratedByKernel ? 5 : 4) : 0;
        };
        functions.isIntegratedByDxCore = [this](LUID luid) {
            return At(luid.LowPart - 1).card.isIntegratedByDxCore;
        };
        functions.readFile = [this](const std::wstring& path) {
            const std::wstring text = files[path];
            return std::string(text.begin(), text.end());
        };
        functions.hasLibrary = [this](const wchar_t* name) {
            return libraries.find(std::wstring(name) + L",") != std::wstring::npos;
        };
        functions.getVersion = [this](OSVERSIONINFOW& version) {
            version.dwMajorVersion = system / 10;
            version.dwMinorVersion = system % 10;
        };
        return functions;
    }

    /// Such as "11:2 12:3".
    std::wstring Calls() const
    {
        std::wstring shown;
        for (const auto& [name, count] : calls)
            shown += (shown.empty() ? L"" : L" ") + name + L":" + std::to_wstring(count);
        return shown;
    }

    /// The references that are still held on all objects that were returned.
    ULONG References() const { return held; }

    /// Changes what is reported about the system, or, by its name, a property of DxDiag's only display
    /// device.
    void Set(const std::wstring& key, const std::wstring& value)
    {
        if (key == L"libraries")
            libraries = value;
        else if (key == L"system")
            system = std::stoul(value);
        else if (key == L"newest level")
            newestLevel = std::stoul(value, nullptr, 16);
        else if (key == L"no DXGI")
            hasDxgi = false;
        else if (key == L"reversed")
            isReversed = true;
        else if (key == L"broken")
            broken = value;
        else if (key == L"displays of each")
            displays = static_cast<UINT>(std::stoul(value));
        else if (key.starts_with(L"file "))
            files[key.substr(5)] = value;
        else
            diagnosis[key] = value;
    }

private:
    struct Object : FakeObject {
        explicit Object(FakeGraphics& newOwner) : FakeObject(newOwner.held), owner(&newOwner) {}

        FakeGraphics* owner;
        Card card{};
        LUID luid{};
        bool isInitialized = false;  ///< of DxDiag's provider
    };

    Object& At(std::size_t index) { return *std::next(adapters.begin(), static_cast<int>(index)); }

    /// In the order in which the interfaces list them.
    Object& Listed(std::size_t index) { return At(isReversed ? adapters.size() - 1 - index : index); }

    const Card& Find(IUnknown* adapter)
    {
        for (const Object& object : adapters) {
            if (static_cast<const void*>(&object) == adapter)
                return object.card;
        }
        throw std::invalid_argument("Direct3D is asked for an adapter of its own choice");
    }

    void SetUpDirect3D9()
    {
        direct3D9.Answer(
            4, +[](Object* self) {
                return static_cast<UINT>(self->owner->adapters.size()) * self->owner->displays;
            });
        direct3D9.Answer(
            5, +[](Object* self, UINT index, DWORD flags, D3DADAPTER_IDENTIFIER9* out) -> HRESULT {
                if (flags != 0)  // would have the driver's signature checked
                    return D3DERR_NOTAVAILABLE;
                const Card& card = self->owner->Listed(index / self->owner->displays).card;
                std::ranges::copy(std::string(card.name.begin(), card.name.end()), out->Description);
                out->VendorId = card.vendor;
                out->DeviceId = card.device;
                out->SubSysId = card.subsystem;
                out->Revision = 0xA1;
                out->DriverVersion.QuadPart = static_cast<LONGLONG>(card.version);
                return S_OK;
            });
        direct3D9.Answer(
            14, +[](Object*, UINT, D3DDEVTYPE type, D3DCAPS9* out) -> HRESULT {
                out->PixelShaderVersion = 0xFFFF0300;
                return type == D3DDEVTYPE_HAL ? S_OK : HRESULT{D3DERR_NOTAVAILABLE};
            });
        direct3D9.Answer(
            21, +[](Object* self, UINT index, LUID* out) -> HRESULT {
                *out = self->owner->Listed(index / self->owner->displays).luid;
                return S_OK;
            });
    }

    /// One object stands for all containers.
    void SetUpDxDiag()
    {
        diagnosisClass.Answer(
            3, +[](Object* self, IUnknown*, REFIID id, void** out) -> HRESULT {
                return id == GUID{0x9C6B4CB0,
                                  0x23F8,
                                  0x49CC,
                                  {0xA3, 0xED, 0x45, 0xA5, 0x50, 0x00, 0xA6, 0xD2}}
                           ? self->owner->provider.Give(out)
                           : HRESULT{E_NOINTERFACE};
            });
        provider.Answer(
            3, +[](Object* self, DXDIAG_INIT_PARAMS* parameters) {
                self->isInitialized = parameters->dwDxDiagHeaderVersion == DXDIAG_DX9_SDK_VERSION;
                return S_OK;
            });
        provider.Answer(
            4, +[](Object* self, IDxDiagContainer** out) -> HRESULT {
                return self->isInitialized ? self->owner->container.Give(out) : E_FAIL;
            });
        container.Answer(
            4, +[](Object* self, DWORD index, wchar_t* name, DWORD) -> HRESULT {
                wcscpy(name, L"0");
                return index == 0 && !self->owner->diagnosis.empty() ? S_OK : E_INVALIDARG;
            });
        container.Answer(
            5, +[](Object* self, const wchar_t* name, IDxDiagContainer** out) -> HRESULT {
                const std::wstring asked = name;
                return asked == L"DxDiag_DisplayDevices" || asked == L"0" ? self->Give(out) : E_INVALIDARG;
            });
        container.Answer(
            8, +[](Object* self, const wchar_t* name, VARIANT* value) -> HRESULT {
                const auto found = self->owner->diagnosis.find(name);
                if (found == self->owner->diagnosis.end())
                    return E_INVALIDARG;
                if (found->second.empty())
                    return S_OK;
                value->vt = VT_BSTR;
                value->bstrVal = SysAllocString(found->second.c_str());
                return S_OK;
            });
    }

    std::wstring libraries = L"d3d9.dll,d3d10.dll,d3d10_1.dll,d3d11.dll,d3d12.dll,";
    DWORD system = 100;                         // Windows' version, ten times
    UINT newestLevel = D3D_FEATURE_LEVEL_12_1;  // that the runtime knows
    bool hasDxgi = true;
    bool isReversed = false;
    UINT displays = 1;  // Direct3D 9 lists an adapter for each of them
    std::wstring broken;
    std::map<std::wstring, std::wstring> diagnosis, files;
    ULONG held = 0;
    std::list<Object> adapters;
    Object factory{*this}, direct3D9{*this}, device10{*this}, device12{*this}, diagnosisClass{*this},
        provider{*this}, container{*this};
    std::map<std::wstring, int> calls;
};

}  // namespace kel::test
