#pragma once

#include <oaidl.h>
#include <ocidl.h>

#include <map>
#include <string>
#include <vector>

#include "comutil.h"

namespace kel::test {

/// A property bag over a map, which converts to the type that is asked for, as those of hosts do; remembers
/// the order of reads. Lives on the stack and counts no references.
class PropertyBag : public IPropertyBag {
public:
    std::map<std::wstring, _variant_t> values;
    std::vector<std::wstring> reads;

    STDMETHODIMP QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }

    STDMETHODIMP Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override
    {
        const VARTYPE asked = value->vt;
        reads.emplace_back(name);
        if (asked == VT_BSTR && value->bstrVal != nullptr)
            return E_UNEXPECTED;  // whose string that is, each host answers in its own way
        const auto found = values.find(name);
        return found != values.end() ? VariantChangeType(value, &found->second, 0, asked) : E_INVALIDARG;
    }

    STDMETHODIMP Write(LPCOLESTR name, VARIANT* value) override
    {
        values[name] = *value;
        return S_OK;
    }
};

}  // namespace kel::test
