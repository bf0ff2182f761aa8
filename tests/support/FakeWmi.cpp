#include "support/FakeWmi.h"

namespace kel::test {

namespace {

using Plain = ServiceObject<FakeWmiData>;
using Object = ServiceObject<FakeWmiData, WmiProperties>;
using Enumerator = ServiceObject<FakeWmiData, std::vector<WmiProperties>>;

HRESULT Get(Object* self, const wchar_t* name, LONG, VARIANT* value, CIMTYPE* type, LONG*)
{
    const auto found = self->content.find(name);
    if (found == self->content.end())
        return E_FAIL;
    *type = found->second.type;
    return VariantCopy(value, &found->second.value);
}

HRESULT Next(Enumerator* self, LONG wait, ULONG count, IWbemClassObject** result, ULONG* returned)
{
    FakeWmiData& data = self->data;
    data.arguments += L"next " + std::to_wstring(wait) + L" " + std::to_wstring(count) + L"; ";
    for (*returned = 0; *returned < count && *returned < self->content.size(); ++*returned) {
        Make<Object>(data, __uuidof(IWbemClassObject), self->content[*returned], 4, &Get)
            .Give(&result[*returned]);
    }
    if (FAILED(data.next))
        return data.next;
    return *returned == count ? WBEM_S_NO_ERROR : WBEM_S_FALSE;
}

HRESULT SetBlanket(Plain* self, IUnknown*, DWORD authentication, DWORD authorisation, OLECHAR* principal,
                   DWORD level, DWORD impersonation, void* identity, DWORD capabilities)
{
    std::wstring& arguments = self->data.arguments;
    arguments += L"blanket";
    for (const DWORD value : {authentication, authorisation, level, impersonation, capabilities})
        arguments += L" " + std::to_wstring(value);
    arguments += principal == nullptr && identity == nullptr ? L"; " : L" of somebody; ";
    return self->data.refusesBlanket ? E_ACCESSDENIED : S_OK;
}

HRESULT AskServices(Plain* self, REFIID riid, void** out)
{
    if (riid == IID_IClientSecurity)
        return Make<Plain>(self->data, riid, 0, 4, &SetBlanket).Give(out);
    return riid == IID_IUnknown ? self->Give(out) : E_NOINTERFACE;
}

HRESULT ExecQuery(Plain* self, const BSTR language, const BSTR query, LONG flags, IWbemContext* context,
                  IEnumWbemClassObject** result)
{
    FakeWmiData& data = self->data;
    data.arguments += language + (L" " + std::to_wstring(flags)) + (context ? L" in a context; " : L"; ");
    data.queries.emplace_back(query);
    if (SUCCEEDED(data.query))
        Make<Enumerator>(data, __uuidof(IEnumWbemClassObject), data.objects[query], 4, &Next).Give(result);
    return data.query;
}

HRESULT ConnectServer(Plain* self, const BSTR resource, const BSTR user, const BSTR password,
                      const BSTR locale, LONG flags, const BSTR authority, IWbemContext* context,
                      IWbemServices** result)
{
    FakeWmiData& data = self->data;
    const bool isPlain = !user && !password && !locale && !authority && !context;
    data.arguments += resource + (L" " + std::to_wstring(flags)) + (isPlain ? L"; " : L" as somebody; ");
    data.whileAsked();
    if (FAILED(data.connect))
        return data.connect;
    auto& services = Make<Plain>(data, __uuidof(IWbemServices), 0, 20, &ExecQuery);
    services.Answer(0, &AskServices);
    return services.Give(result);
}

HRESULT CreateInstance(Plain* self, IUnknown*, REFIID riid, void** result)
{
    if (riid != IID_IWbemLocator)
        return E_NOINTERFACE;
    return Make<Plain>(self->data, riid, 0, 3, &ConnectServer).Give(result);
}

}  // namespace

FakeWmi::FakeWmi(FakeWmiData& data)
    : locators(CLSID_WbemLocator, Make<Plain>(data, IID_IClassFactory, 0, 3, &CreateInstance))
{
}

}  // namespace kel::test
