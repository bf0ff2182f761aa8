#include "control/SysInfo.h"

#include <memory>
#include <new>

#include "control/TypeInfo.h"

namespace kel {

namespace {

constexpr DWORD SupportedSafety = INTERFACESAFE_FOR_UNTRUSTED_CALLER | INTERFACESAFE_FOR_UNTRUSTED_DATA;

}  // namespace

HRESULT CSysInfo::Create(IUnknown* outer, REFIID riid, void** result) noexcept
{
    if (result == nullptr)
        return E_POINTER;
    *result = nullptr;
    if (outer != nullptr && riid != IID_IUnknown)
        return CLASS_E_NOAGGREGATION;
    try {
        const Microsoft::WRL::ComPtr<Inner> object(&(new CSysInfo(outer))->inner);
        return object->QueryInterface(riid, result);
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

CSysInfo::CSysInfo(IUnknown* newOuter) : outer(newOuter != nullptr ? newOuter : &inner) {}

HRESULT CSysInfo::Inner::QueryInterface(REFIID riid, void** result)
{
    return owner.FindInterface(riid, result);
}

ULONG CSysInfo::Inner::AddRef()
{
    return ++owner.references;
}

ULONG CSysInfo::Inner::Release()
{
    const ULONG left = --owner.references;
    if (left == 0)
        delete &owner;  // as COM requires: the last reference destroys the object
    return left;
}

HRESULT CSysInfo::FindInterface(REFIID riid, void** result)
{
    if (result == nullptr)
        return E_POINTER;
    IUnknown* found = nullptr;
    if (riid == IID_IUnknown)
        found = &inner;
    else if (riid == IID_IDispatch || riid == IID_ISysInfo)
        found = static_cast<ISysInfo*>(this);
    else if (riid == IID_IObjectWithSite)
        found = static_cast<IObjectWithSite*>(this);
    else if (riid == IID_IPersist || riid == IID_IPersistPropertyBag)
        found = static_cast<IPersistPropertyBag*>(this);
    else if (riid == IID_IObjectSafety)
        found = static_cast<IObjectSafety*>(this);
    *result = found;
    if (found == nullptr)
        return E_NOINTERFACE;
    found->AddRef();
    return S_OK;
}

HRESULT CSysInfo::QueryInterface(REFIID riid, void** result)
{
    return outer->QueryInterface(riid, result);
}

ULONG CSysInfo::AddRef()
{
    return outer->AddRef();
}

ULONG CSysInfo::Release()
{
    return outer->Release();
}

ITypeInfo* CSysInfo::TypeInfo() noexcept
{
    // Takes no turn: names can be looked up during another apartment's run.
    if (!typeInfo)
        typeInfo = LoadSysInfoTypeInfo();
    return typeInfo.Get();
}

HRESULT CSysInfo::GetTypeInfoCount(UINT* count)
{
    if (count == nullptr)
        return E_POINTER;
    *count = 1;
    return S_OK;
}

HRESULT CSysInfo::GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** result)
{
    if (result == nullptr)
        return E_POINTER;
    *result = nullptr;
    if (index != 0)
        return DISP_E_BADINDEX;
    return TypeInfo() != nullptr ? typeInfo.CopyTo(result) : TYPE_E_CANTLOADLIBRARY;
}

HRESULT CSysInfo::GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID /*locale*/, DISPID* ids)
{
    if (riid != IID_NULL)
        return DISP_E_UNKNOWNINTERFACE;
    if (names == nullptr || ids == nullptr)
        return E_POINTER;
    return TypeInfo() != nullptr ? DispGetIDsOfNames(typeInfo.Get(), names, count, ids)
                                 : TYPE_E_CANTLOADLIBRARY;
}

HRESULT CSysInfo::Invoke(DISPID id, REFIID riid, LCID /*locale*/, WORD flags, DISPPARAMS* parameters,
                         VARIANT* result, EXCEPINFO* exception, UINT* argumentError)
{
    if (riid != IID_NULL)
        return DISP_E_UNKNOWNINTERFACE;
    if (parameters == nullptr)
        return E_POINTER;
    if (TypeInfo() == nullptr)
        return TYPE_E_CANTLOADLIBRARY;
    return DispInvoke(static_cast<ISysInfo*>(this), typeInfo.Get(), id, flags, parameters, result, exception,
                      argumentError);
}

HRESULT CSysInfo::SetSite(IUnknown* newSite)
{
    site = newSite;
    return S_OK;
}

HRESULT CSysInfo::GetSite(REFIID riid, void** result)
{
    if (result == nullptr)
        return E_POINTER;
    *result = nullptr;
    return site ? site->QueryInterface(riid, result) : E_FAIL;
}

HRESULT CSysInfo::GetInterfaceSafetyOptions(REFIID riid, DWORD* supported, DWORD* enabled)
{
    if (supported == nullptr || enabled == nullptr)
        return E_POINTER;
    *supported = 0;
    *enabled = 0;
    Microsoft::WRL::ComPtr<IUnknown> queried;
    const HRESULT found = QueryInterface(riid, reinterpret_cast<void**>(queried.GetAddressOf()));
    if (FAILED(found))
        return found;
    *supported = SupportedSafety;
    *enabled = safetyOptions;
    return S_OK;
}

HRESULT CSysInfo::SetInterfaceSafetyOptions(REFIID riid, DWORD mask, DWORD enabled)
{
    Microsoft::WRL::ComPtr<IUnknown> queried;
    const HRESULT found = QueryInterface(riid, reinterpret_cast<void**>(queried.GetAddressOf()));
    if (FAILED(found))
        return found;
    if ((mask & ~SupportedSafety) != 0)
        return E_FAIL;
    safetyOptions = (safetyOptions & ~mask) | (enabled & mask);
    return S_OK;
}

}  // namespace kel
