#include "support/FakeWmi.h"

#include "support/FakeWmiObjects.h"

namespace kel::test {

namespace {

struct Security final : Fake<IClientSecurity> {
    STDMETHODIMP SetBlanket(IUnknown*, DWORD authentication, DWORD authorisation, OLECHAR* principal,
                            DWORD level, DWORD impersonation, void* identity, DWORD capabilities) override
    {
        data->arguments += L"blanket";
        for (const DWORD value : {authentication, authorisation, level, impersonation, capabilities})
            data->arguments += L" " + std::to_wstring(value);
        data->arguments += principal == nullptr && identity == nullptr ? L"; " : L" of somebody; ";
        return data->refusesBlanket ? E_ACCESSDENIED : S_OK;
    }
    KEL_UNUSED(QueryBlanket, (IUnknown*, DWORD*, DWORD*, OLECHAR**, DWORD*, DWORD*, void**, DWORD*))
    KEL_UNUSED(CopyProxy, (IUnknown*, IUnknown**))
};

struct Services final : Fake<IWbemServices> {
    STDMETHODIMP QueryInterface(REFIID riid, void** result) override
    {
        if (riid != IID_IClientSecurity)
            return Fake::QueryInterface(riid, result);
        *result = Make<Security>(data);
        return S_OK;
    }
    STDMETHODIMP ExecQuery(const BSTR language, const BSTR query, LONG flags, IWbemContext* context,
                           IEnumWbemClassObject** result) override
    {
        data->arguments +=
            language + (L" " + std::to_wstring(flags)) + (context ? L" in a context; " : L"; ");
        data->queries.emplace_back(query);
        if (SUCCEEDED(data->query))
            *result = Make<WmiEnumerator>(data, data->objects[query]);
        return data->query;
    }
    using Context = IWbemContext*;
    using Sink = IWbemObjectSink*;
    using Result = IWbemCallResult**;
    using Objects = IEnumWbemClassObject**;
    KEL_UNUSED(OpenNamespace, (const BSTR, LONG, Context, IWbemServices**, Result))
    KEL_UNUSED(CancelAsyncCall, (Sink))
    KEL_UNUSED(QueryObjectSink, (LONG, IWbemObjectSink**))
    KEL_UNUSED(GetObject, (const BSTR, LONG, Context, IWbemClassObject**, Result))
    KEL_UNUSED_2(PutClass, PutInstance, (IWbemClassObject*, LONG, Context, Result))
    KEL_UNUSED_2(PutClassAsync, PutInstanceAsync, (IWbemClassObject*, LONG, Context, Sink))
    KEL_UNUSED_2(DeleteClass, DeleteInstance, (const BSTR, LONG, Context, Result))
    KEL_UNUSED_2(DeleteClassAsync, DeleteInstanceAsync, (const BSTR, LONG, Context, Sink))
    KEL_UNUSED_2(CreateClassEnum, CreateInstanceEnum, (const BSTR, LONG, Context, Objects))
    KEL_UNUSED_2(CreateClassEnumAsync, CreateInstanceEnumAsync, (const BSTR, LONG, Context, Sink))
    KEL_UNUSED(GetObjectAsync, (const BSTR, LONG, Context, Sink))
    KEL_UNUSED_2(ExecQueryAsync, ExecNotificationQueryAsync, (const BSTR, const BSTR, LONG, Context, Sink))
    KEL_UNUSED(ExecNotificationQuery, (const BSTR, const BSTR, LONG, Context, Objects))
    KEL_UNUSED(ExecMethod,
               (const BSTR, const BSTR, LONG, Context, IWbemClassObject*, IWbemClassObject**, Result))
    KEL_UNUSED(ExecMethodAsync, (const BSTR, const BSTR, LONG, Context, IWbemClassObject*, Sink))
};

struct Locator final : Fake<IWbemLocator> {
    STDMETHODIMP ConnectServer(const BSTR resource, const BSTR user, const BSTR password, const BSTR locale,
                               LONG flags, const BSTR authority, IWbemContext* context,
                               IWbemServices** result) override
    {
        const bool isPlain = !user && !password && !locale && !authority && !context;
        data->arguments += resource + (L" " + std::to_wstring(flags)) + (isPlain ? L"; " : L" as somebody; ");
        data->whileAsked();
        if (SUCCEEDED(data->connect))
            *result = Make<Services>(data);
        return data->connect;
    }
};

struct Factory final : Fake<IClassFactory> {
    STDMETHODIMP CreateInstance(IUnknown*, REFIID riid, void** result) override
    {
        *result = riid == IID_IWbemLocator ? Make<Locator>(data) : nullptr;
        return *result != nullptr ? S_OK : E_NOINTERFACE;
    }
    KEL_UNUSED(LockServer, (BOOL))
};

}  // namespace

FakeWmi::FakeWmi(FakeWmiData& data)
{
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    auto* const factory = Make<Factory>(&data);
    CoRegisterClassObject(CLSID_WbemLocator, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                          &registration);
    factory->Release();
}

FakeWmi::~FakeWmi()
{
    CoRevokeClassObject(registration);
    CoUninitialize();
}

}  // namespace kel::test
