#pragma once

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

#include "platform/Handles.h"
#include "program/embedding/Clients.h"

namespace kel::program {

/// The class as other processes ask for it. It forwards to the control's own factory, whose objects live in
/// the apartment of the thread that made this. Its own calls arrive on threads of the multithreaded
/// apartment, where the RPC runtime can name the calling process. Must live until the process ends.
class ClassObject final : public IClassFactory {
public:
    explicit ClassObject(Clients& newClients) : clients(newClients) {}
    ClassObject(const ClassObject&) = delete;
    ClassObject& operator=(const ClassObject&) = delete;
    ~ClassObject() = default;

    /// Registers the class on a thread of its own. Calls into this thread's apartment are served meanwhile.
    HRESULT Register(IClassFactory* factory);
    /// Ends the registration. Clients that have got the class can still call it.
    void Revoke();
    /// Registers it again.
    void Restore();

    STDMETHODIMP QueryInterface(REFIID riid, void** result) override;
    // Not counted, as the object is not destroyed.
    STDMETHODIMP_(ULONG) AddRef() override { return 1; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID riid, void** result) override;
    STDMETHODIMP LockServer(BOOL lock) override;

private:
    /// Takes the factory, and registers and revokes the class in turn.
    void Serve(IStream* factory) noexcept;
    /// Has that thread take its next step.
    void Step();
    void NoteCaller() noexcept;

    Clients& clients;
    Microsoft::WRL::ComPtr<IClassFactory> inner;
    OwnedHandle changed{CreateEventW(nullptr, FALSE, FALSE, nullptr)};  // by a step
    OwnedHandle next{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
    HRESULT offered = E_FAIL;
};

}  // namespace kel::program
