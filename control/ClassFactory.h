#pragma once

#include <windows.h>

#include <unknwn.h>

#include <atomic>

#include "control/DetectionModule.h"

namespace kel {

/// The class factory of the control's one class.
class ClassFactory final : public IClassFactory {
public:
    /// Creates a factory and queries it for an interface.
    /// @param result not a null pointer, and null at first
    /// @return E_OUTOFMEMORY or E_NOINTERFACE when that fails
    static HRESULT Create(REFIID riid, void** result) noexcept;

    ClassFactory(const ClassFactory&) = delete;
    ClassFactory& operator=(const ClassFactory&) = delete;

    STDMETHODIMP QueryInterface(REFIID riid, void** result) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID riid, void** result) override;
    STDMETHODIMP LockServer(BOOL lock) override;

private:
    ClassFactory() = default;
    ~ClassFactory() = default;

    ModuleLock moduleLock;
    std::atomic<ULONG> references = 0;
};

}  // namespace kel
