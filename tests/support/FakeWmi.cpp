#include "support/FakeWmi.h"

#include <utility>

namespace kel::test {

namespace {

/// Counts references and interfaces for the fakes below.
template <typename Interface>
class Fake : public Interface {
public:
    Fake(FakeWmiData& newData, REFIID newId) : data(newData), id(newId) { ++data.living; }
    virtual ~Fake() { --data.living; }

    STDMETHODIMP QueryInterface(REFIID riid, void** result) override
    {
        const bool isKnown = riid == IID_IUnknown || riid == id;
        *result = isKnown ? this : nullptr;
        if (isKnown)
            AddRef();
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = --references;
        if (left == 0)
            delete this;
        return left;
    }

protected:
    FakeWmiData& data;
    IID id;
    ULONG references = 0;
};

#define KEL_UNUSED(signature)       \
    STDMETHODIMP signature override \
    {                               \
        return E_NOTIMPL;           \
    }

class Object : public Fake<IWbemClassObject> {
public:
    Object(FakeWmiData& newData, FakeObject newProperties)
        : Fake(newData, IID_IWbemClassObject), properties(std::move(newProperties))
    {
    }
    STDMETHODIMP Get(LPCWSTR name, LONG, VARIANT* value, CIMTYPE* type, LONG*) override
    {
        const auto found = properties.find(name);
        if (found == properties.end())
            return E_FAIL;
        *type = found->second.type;
        return VariantCopy(value, &found->second.value);
    }
    KEL_UNUSED(GetQualifierSet(IWbemQualifierSet**))
    KEL_UNUSED(Put(LPCWSTR, LONG, VARIANT*, CIMTYPE))
    KEL_UNUSED(Delete(LPCWSTR))
    KEL_UNUSED(GetNames(LPCWSTR, LONG, VARIANT*, SAFEARRAY**))
    KEL_UNUSED(BeginEnumeration(LONG))
    KEL_UNUSED(Next(LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*))
    KEL_UNUSED(EndEnumeration())
    KEL_UNUSED(GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet**))
    KEL_UNUSED(Clone(IWbemClassObject**))
    KEL_UNUSED(GetObjectText(LONG, BSTR*))
    KEL_UNUSED(SpawnDerivedClass(LONG, IWbemClassObject**))
    KEL_UNUSED(SpawnInstance(LONG, IWbemClassObject**))
    KEL_UNUSED(CompareTo(LONG, IWbemClassObject*))
    KEL_UNUSED(GetPropertyOrigin(LPCWSTR, BSTR*))
    KEL_UNUSED(InheritsFrom(LPCWSTR))
    KEL_UNUSED(GetMethod(LPCWSTR, LONG, IWbemClassObject**, IWbemClassObject**))
    KEL_UNUSED(PutMethod(LPCWSTR, LONG, IWbemClassObject*, IWbemClassObject*))
    KEL_UNUSED(DeleteMethod(LPCWSTR))
    KEL_UNUSED(BeginMethodEnumeration(LONG))
    KEL_UNUSED(NextMethod(LONG, BSTR*, IWbemClassObject**, IWbemClassObject**))
    KEL_UNUSED(EndMethodEnumeration())
    KEL_UNUSED(GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet**))
    KEL_UNUSED(GetMethodOrigin(LPCWSTR, BSTR*))

private:
    FakeObject properties;
};

class Enumerator : public Fake<IEnumWbemClassObject> {
public:
    Enumerator(FakeWmiData& newData, std::vector<FakeObject> newObjects)
        : Fake(newData, IID_IEnumWbemClassObject), objects(std::move(newObjects))
    {
    }
    STDMETHODIMP Next(LONG, ULONG count, IWbemClassObject** result, ULONG* returned) override
    {
        data.counts.push_back(count);
        *returned = 0;
        for (; *returned < count && *returned < objects.size(); ++*returned) {
            result[*returned] = new Object(data, objects[*returned]);
            result[*returned]->AddRef();
        }
        return *returned == count ? WBEM_S_NO_ERROR : WBEM_S_FALSE;
    }
    KEL_UNUSED(Reset())
    KEL_UNUSED(NextAsync(ULONG, IWbemObjectSink*))
    KEL_UNUSED(Clone(IEnumWbemClassObject**))
    KEL_UNUSED(Skip(LONG, ULONG))

private:
    std::vector<FakeObject> objects;
};

class Security : public Fake<IClientSecurity> {
public:
    explicit Security(FakeWmiData& newData) : Fake(newData, IID_IClientSecurity) {}
    KEL_UNUSED(QueryBlanket(IUnknown*, DWORD*, DWORD*, OLECHAR**, DWORD*, DWORD*, void**, DWORD*))
    STDMETHODIMP SetBlanket(IUnknown*, DWORD, DWORD, OLECHAR*, DWORD, DWORD, void*, DWORD) override
    {
        return S_OK;
    }
    KEL_UNUSED(CopyProxy(IUnknown*, IUnknown**))
};

class Services : public Fake<IWbemServices> {
public:
    explicit Services(FakeWmiData& newData) : Fake(newData, IID_IWbemServices) {}
    STDMETHODIMP QueryInterface(REFIID riid, void** result) override
    {
        if (riid != IID_IClientSecurity || data.refusesBlanket)
            return Fake::QueryInterface(riid, result);
        auto* security = new Security(data);
        security->AddRef();
        *result = security;
        return S_OK;
    }
    STDMETHODIMP ExecQuery(const BSTR, const BSTR query, LONG, IWbemContext*,
                           IEnumWbemClassObject** result) override
    {
        data.queries.emplace_back(query);
        if (FAILED(data.query))
            return data.query;
        *result = new Enumerator(data, data.objects[query]);
        (*result)->AddRef();
        return S_OK;
    }
    KEL_UNUSED(OpenNamespace(const BSTR, LONG, IWbemContext*, IWbemServices**, IWbemCallResult**))
    KEL_UNUSED(CancelAsyncCall(IWbemObjectSink*))
    KEL_UNUSED(QueryObjectSink(LONG, IWbemObjectSink**))
    KEL_UNUSED(GetObject(const BSTR, LONG, IWbemContext*, IWbemClassObject**, IWbemCallResult**))
    KEL_UNUSED(GetObjectAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    KEL_UNUSED(PutClass(IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**))
    KEL_UNUSED(PutClassAsync(IWbemClassObject*, LONG, IWbemContext*, IWbemObjectSink*))
    KEL_UNUSED(DeleteClass(const BSTR, LONG, IWbemContext*, IWbemCallResult**))
    KEL_UNUSED(DeleteClassAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    KEL_UNUSED(CreateClassEnum(const BSTR, LONG, IWbemContext*, IEnumWbemClassObject**))
    KEL_UNUSED(CreateClassEnumAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    KEL_UNUSED(PutInstance(IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**))
    KEL_UNUSED(PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*, IWbemObjectSink*))
    KEL_UNUSED(DeleteInstance(const BSTR, LONG, IWbemContext*, IWbemCallResult**))
    KEL_UNUSED(DeleteInstanceAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    KEL_UNUSED(CreateInstanceEnum(const BSTR, LONG, IWbemContext*, IEnumWbemClassObject**))
    KEL_UNUSED(CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    KEL_UNUSED(ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    KEL_UNUSED(ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*, IEnumWbemClassObject**))
    KEL_UNUSED(ExecNotificationQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemObjectSink*))
    KEL_UNUSED(ExecMethod(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*, IWbemClassObject**,
                          IWbemCallResult**))
    KEL_UNUSED(ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*,
                               IWbemObjectSink*))
};

class Locator : public Fake<IWbemLocator> {
public:
    explicit Locator(FakeWmiData& newData) : Fake(newData, IID_IWbemLocator) {}
    STDMETHODIMP ConnectServer(const BSTR, const BSTR, const BSTR, const BSTR, LONG, const BSTR,
                               IWbemContext*, IWbemServices** result) override
    {
        if (FAILED(data.connect))
            return data.connect;
        *result = new Services(data);
        (*result)->AddRef();
        return S_OK;
    }
};

class Factory : public Fake<IClassFactory> {
public:
    explicit Factory(FakeWmiData& newData) : Fake(newData, IID_IClassFactory) {}
    STDMETHODIMP CreateInstance(IUnknown*, REFIID riid, void** result) override
    {
        const Microsoft::WRL::ComPtr<IWbemLocator> locator(new Locator(data));
        return locator->QueryInterface(riid, result);
    }
    KEL_UNUSED(LockServer(BOOL))
};

}  // namespace

FakeWmi::FakeWmi(FakeWmiData& data)
{
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const Microsoft::WRL::ComPtr<IClassFactory> factory(new Factory(data));
    CoRegisterClassObject(CLSID_WbemLocator, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                          &registration);
}

FakeWmi::~FakeWmi()
{
    CoRevokeClassObject(registration);
    CoUninitialize();
}

}  // namespace kel::test
