// What hosts of the control provide: an apartment, a script's access to members, an aggregating object, a
// property bag.
#pragma once

#include <windows.h>

#include <ocidl.h>

#include <comutil.h>
#include <wrl/client.h>

#include <map>
#include <string>

#include "Detection.h"

namespace kel::test {

/// A COM apartment while it exists.
struct Apartment {
    explicit Apartment(DWORD kind = COINIT_APARTMENTTHREADED) { CoInitializeEx(nullptr, kind); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() { CoUninitialize(); }
};

/// Reads a property by its name, as a script does, or sets it to a value.
inline HRESULT Call(IDispatch* object, const wchar_t* name, _variant_t& result,
                    const _variant_t* set = nullptr)
{
    _bstr_t text(name);
    wchar_t* names = text;
    DISPID id = 0, put = DISPID_PROPERTYPUT;
    const HRESULT found = object->GetIDsOfNames(IID_NULL, &names, 1, 0, &id);
    if (FAILED(found))
        return found;
    DISPPARAMS arguments = {const_cast<_variant_t*>(set), &put, set != nullptr, set != nullptr};
    return object->Invoke(id, IID_NULL, 0, set != nullptr ? DISPATCH_PROPERTYPUT : DISPATCH_PROPERTYGET,
                          &arguments, set != nullptr ? nullptr : &result, nullptr, nullptr);
}

/// An aggregating object: hands out its own identity and passes everything else to the control inside. Lives
/// on the stack and counts its references.
class Outer final : public IUnknown {
public:
    Microsoft::WRL::ComPtr<IUnknown> inner;
    ULONG references = 1;

    Microsoft::WRL::ComPtr<ISysInfo> Create(IClassFactory& factory)
    {
        Microsoft::WRL::ComPtr<ISysInfo> control;
        if (SUCCEEDED(factory.CreateInstance(this, IID_PPV_ARGS(&inner))))
            QueryInterface(IID_PPV_ARGS(&control));
        return control;
    }

    STDMETHODIMP QueryInterface(REFIID riid, void** result) override
    {
        if (riid != IID_IUnknown)
            return inner->QueryInterface(riid, result);
        *result = this;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override { return --references; }
};

/// A property bag over a map, which converts to the type that is asked for, as those of hosts do. Lives on
/// the stack and counts no references.
class PropertyBag final : public IPropertyBag {
public:
    std::map<std::wstring, _variant_t> values;
    HRESULT written = S_OK;  ///< the answer to each value that is saved

    STDMETHODIMP QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }

    STDMETHODIMP Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override
    {
        const VARTYPE asked = value->vt;
        if (asked == VT_BSTR && value->bstrVal != nullptr)
            return E_UNEXPECTED;  // hosts differ in who owns such a string
        const auto found = values.find(name);
        return found != values.end() ? VariantChangeType(value, &found->second, 0, asked) : E_INVALIDARG;
    }

    STDMETHODIMP Write(LPCOLESTR name, VARIANT* value) override
    {
        values[name] = *value;
        return written;
    }
};

}  // namespace kel::test
