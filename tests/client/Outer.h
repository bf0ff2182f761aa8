#pragma once

#include <unknwn.h>

#include <wrl/client.h>

namespace kel::test {

/// An aggregating object: hands out its own identity and passes everything else to the control inside. Lives
/// on the stack and counts its references.
class Outer final : public IUnknown {
public:
    Microsoft::WRL::ComPtr<IUnknown> inner;
    ULONG references = 1;

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

}  // namespace kel::test
