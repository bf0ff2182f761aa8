#include "control/ClassFactory.h"

#include <wrl/client.h>

#include <new>

#include "control/SysInfo.h"

namespace kel {

HRESULT ClassFactory::Create(REFIID riid, void** result) noexcept
{
    const Microsoft::WRL::ComPtr<ClassFactory> factory(new (std::nothrow) ClassFactory);
    return factory ? factory->QueryInterface(riid, result) : E_OUTOFMEMORY;
}

HRESULT ClassFactory::QueryInterface(REFIID riid, void** result)
{
    if (result == nullptr)
        return E_POINTER;
    *result = nullptr;
    if (riid != IID_IUnknown && riid != IID_IClassFactory)
        return E_NOINTERFACE;
    *result = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
}

ULONG ClassFactory::AddRef()
{
    return ++references;
}

ULONG ClassFactory::Release()
{
    const ULONG left = --references;
    if (left == 0)
        delete this;  // as COM requires: the last reference destroys the object
    return left;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID riid, void** result)
{
    return CSysInfo::Create(outer, riid, result);
}

HRESULT ClassFactory::LockServer(BOOL lock)
{
    if (lock)
        CDetectionModule::Instance().Lock();
    else
        CDetectionModule::Instance().Unlock();
    return S_OK;
}

}  // namespace kel
