#include "program/embedding/ClassObject.h"

#include <objbase.h>
#include <rpc.h>
#include <rpcdce.h>

#include <thread>

#include "Detection.h"

namespace kel::program {

namespace {

constexpr DWORD MaxWait = 30'000;  // milliseconds, for what takes none

/// Waits, and serves calls into this apartment meanwhile.
bool WaitServing(HANDLE event)
{
    DWORD index = 0;
    return CoWaitForMultipleHandles(0, MaxWait, 1, &event, &index) == S_OK;
}

}  // namespace

HRESULT ClassObject::Register(IClassFactory* factory)
{
    Microsoft::WRL::ComPtr<IStream> stream;
    const HRESULT marshaled = CoMarshalInterThreadInterfaceInStream(IID_IClassFactory, factory, &stream);
    if (FAILED(marshaled))
        return marshaled;
    std::thread([this, taken = stream.Detach()] { Serve(taken); }).detach();
    return WaitServing(changed.get()) ? offered : RPC_E_TIMEOUT;
}

void ClassObject::Revoke()
{
    Step();
}

void ClassObject::Restore()
{
    Step();
}

void ClassObject::Step()
{
    SetEvent(next.get());
    WaitServing(changed.get());
}

void ClassObject::Serve(IStream* factory) noexcept
{
    // Nobody leaves the apartment: the process ends.
    offered = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (SUCCEEDED(offered))
        offered = CoGetInterfaceAndReleaseStream(factory, IID_PPV_ARGS(&inner));
    const bool isReady = SUCCEEDED(offered);
    while (true) {
        DWORD registration = 0;
        if (isReady)
            offered = CoRegisterClassObject(CLSID_SysInfo, this, CLSCTX_LOCAL_SERVER,
                                            REGCLS_MULTIPLEUSE | REGCLS_SUSPENDED, &registration);
        if (SUCCEEDED(offered))
            offered = CoResumeClassObjects();
        SetEvent(changed.get());
        WaitForSingleObject(next.get(), INFINITE);
        if (registration != 0)
            CoRevokeClassObject(registration);
        SetEvent(changed.get());
        WaitForSingleObject(next.get(), INFINITE);
    }
}

HRESULT ClassObject::QueryInterface(REFIID riid, void** result)
{
    if (result == nullptr)
        return E_POINTER;
    *result = riid == IID_IUnknown || riid == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
    return *result != nullptr ? S_OK : E_NOINTERFACE;
}

HRESULT ClassObject::CreateInstance(IUnknown* outer, REFIID riid, void** result)
{
    NoteCaller();
    return inner->CreateInstance(outer, riid, result);
}

HRESULT ClassObject::LockServer(BOOL lock)
{
    NoteCaller();
    return inner->LockServer(lock);
}

void ClassObject::NoteCaller() noexcept
{
    unsigned long process = 0;
    if (I_RpcBindingInqLocalClientPID(nullptr, &process) != RPC_S_OK)
        process = 0;
    clients.Note(process, std::chrono::steady_clock::now());
}

}  // namespace kel::program
