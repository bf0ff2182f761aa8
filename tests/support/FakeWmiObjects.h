// What a query of the fake WMI hands out: an enumerator, and the objects in it.
#pragma once

#include "support/FakeWmi.h"

/// A method that the probe never calls, and two of the same arguments.
#define KEL_UNUSED(name, arguments)      \
    STDMETHODIMP name arguments override \
    {                                    \
        return E_NOTIMPL;                \
    }
#define KEL_UNUSED_2(first, second, arguments) KEL_UNUSED(first, arguments) KEL_UNUSED(second, arguments)

namespace kel::test {

struct Nothing {};

/// A COM object of one interface. Its references are counted in the data, which also owns it.
template <typename Interface, typename Content = Nothing>
struct Fake : Interface {
    FakeWmiData* data = nullptr;
    Content content;

    STDMETHODIMP QueryInterface(REFIID riid, void** result) override
    {
        const bool isKnown = riid == IID_IUnknown || riid == __uuidof(Interface);
        *result = isKnown ? this : nullptr;
        data->references += isKnown;
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++data->references; }
    STDMETHODIMP_(ULONG) Release() override { return --data->references; }
};

/// Makes a fake with one reference.
template <typename Made>
Made* Make(FakeWmiData* data, const decltype(Made::content)& content = {})
{
    const auto made = std::make_shared<Made>();
    made->data = data;
    made->content = content;
    data->made.push_back(made);
    ++data->references;
    return made.get();
}

struct WmiObject final : Fake<IWbemClassObject, FakeObject> {
    STDMETHODIMP Get(LPCWSTR name, LONG, VARIANT* value, CIMTYPE* type, LONG*) override
    {
        const auto found = content.find(name);
        if (found == content.end())
            return E_FAIL;
        *type = found->second.type;
        return VariantCopy(value, &found->second.value);
    }
    KEL_UNUSED(GetQualifierSet, (IWbemQualifierSet**))
    KEL_UNUSED(Put, (LPCWSTR, LONG, VARIANT*, CIMTYPE))
    KEL_UNUSED_2(Delete, InheritsFrom, (LPCWSTR))
    KEL_UNUSED(GetNames, (LPCWSTR, LONG, VARIANT*, SAFEARRAY**))
    KEL_UNUSED_2(BeginEnumeration, BeginMethodEnumeration, (LONG))
    KEL_UNUSED(Next, (LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*))
    KEL_UNUSED_2(EndEnumeration, EndMethodEnumeration, ())
    KEL_UNUSED_2(GetPropertyQualifierSet, GetMethodQualifierSet, (LPCWSTR, IWbemQualifierSet**))
    KEL_UNUSED(Clone, (IWbemClassObject**))
    KEL_UNUSED(GetObjectText, (LONG, BSTR*))
    KEL_UNUSED_2(SpawnDerivedClass, SpawnInstance, (LONG, IWbemClassObject**))
    KEL_UNUSED(CompareTo, (LONG, IWbemClassObject*))
    KEL_UNUSED_2(GetPropertyOrigin, GetMethodOrigin, (LPCWSTR, BSTR*))
    KEL_UNUSED(GetMethod, (LPCWSTR, LONG, IWbemClassObject**, IWbemClassObject**))
    KEL_UNUSED(PutMethod, (LPCWSTR, LONG, IWbemClassObject*, IWbemClassObject*))
    KEL_UNUSED(DeleteMethod, (LPCWSTR))
    KEL_UNUSED(NextMethod, (LONG, BSTR*, IWbemClassObject**, IWbemClassObject**))
};

struct WmiEnumerator final : Fake<IEnumWbemClassObject, std::vector<FakeObject>> {
    STDMETHODIMP Next(LONG wait, ULONG count, IWbemClassObject** result, ULONG* returned) override
    {
        data->arguments += L"next " + std::to_wstring(wait) + L" " + std::to_wstring(count) + L"; ";
        for (*returned = 0; *returned < count && *returned < content.size(); ++*returned)
            result[*returned] = Make<WmiObject>(data, content[*returned]);
        if (FAILED(data->next))
            return data->next;
        return *returned == count ? WBEM_S_NO_ERROR : WBEM_S_FALSE;
    }
    KEL_UNUSED(Reset, ())
    KEL_UNUSED(NextAsync, (ULONG, IWbemObjectSink*))
    KEL_UNUSED(Clone, (IEnumWbemClassObject**))
    KEL_UNUSED(Skip, (LONG, ULONG))
};

}  // namespace kel::test
