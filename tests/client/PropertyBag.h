#pragma once

#include <oaidl.h>
#include <ocidl.h>

#include <map>
#include <string>
#include <vector>

#include "comutil.h"

namespace kel::test {

/// A property bag over a map; remembers the order of reads. Lives on the stack and counts no references.
class PropertyBag : public IPropertyBag {
public:
    std::map<std::wstring, _variant_t> values;
    std::vector<std::wstring> reads;

    STDMETHODIMP QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }

    STDMETHODIMP Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override
    {
        reads.emplace_back(name);
        const auto found = values.find(name);
        return found != values.end() ? VariantCopy(value, &found->second) : E_INVALIDARG;
    }

    STDMETHODIMP Write(LPCOLESTR name, VARIANT* value) override
    {
        values[name] = *value;
        return S_OK;
    }
};

}  // namespace kel::test
