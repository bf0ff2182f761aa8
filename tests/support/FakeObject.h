#pragma once

#include <windows.h>

#include <array>
#include <memory>
#include <vector>

namespace kel::test {

/// A COM object of any interface, as its callers see it: a table of functions. A test sets those that are
/// called; the others fail. The test owns the object, and sees by the count that nothing keeps it.
struct FakeObject {
    /// @param newReferences counts the references on this object and its siblings
    /// @param newInterface the interface that it answers for, besides IUnknown
    explicit FakeObject(ULONG& newReferences, const IID& newInterface = IID_IUnknown)
        : references(&newReferences), interfaceId(newInterface)
    {
        table = slots.data();
        slots.fill(reinterpret_cast<void*>(+[] { return E_NOTIMPL; }));
        Answer(
            0, +[](FakeObject* self, REFIID riid, void** out) -> HRESULT {
                *out = nullptr;
                return riid == IID_IUnknown || riid == self->interfaceId ? self->Give(out) : E_NOINTERFACE;
            });
        Answer(
            1, +[](FakeObject* self) { return ++*self->references; });
        Answer(
            2, +[](FakeObject* self) { return --*self->references; });
    }
    FakeObject(const FakeObject&) = delete;
    FakeObject& operator=(const FakeObject&) = delete;

    /// @param slot the function's place in the interface's table; IUnknown's are the first three
    template <typename Result, typename... Arguments>
    void Answer(std::size_t slot, Result (*answer)(Arguments...))
    {
        slots[slot] = reinterpret_cast<void*>(answer);
    }

    template <typename Interface>
    HRESULT Give(Interface** out)
    {
        ++*references;
        *out = reinterpret_cast<Interface*>(this);
        return S_OK;
    }

    void** table = nullptr;  // first, where callers look for it
    std::array<void*, 48> slots{};
    ULONG* references;
    IID interfaceId;
};

/// The data of a fake service, with all objects that it has returned.
struct FakeServiceData {
    ULONG references = 0;  ///< on the objects, all together
    std::vector<std::shared_ptr<FakeObject>> made;
};

/// An object of a fake service.
template <typename Data, typename Content = int>
struct ServiceObject : FakeObject {
    Data& data;
    Content content;

    ServiceObject(Data& newData, const IID& iid, const Content& newContent)
        : FakeObject(newData.references, iid), data(newData), content(newContent)
    {
    }
};

/// Makes one that answers a function, and lives as long as the data.
template <typename Object, typename Data, typename Content, typename Function>
Object& Make(Data& data, const IID& iid, const Content& content, std::size_t slot, Function answer)
{
    const auto made = std::make_shared<Object>(data, iid, content);
    data.made.push_back(made);
    made->Answer(slot, answer);
    return *made;
}

/// Replaces the system's class factory with a test's, in this process and in an apartment, while it exists.
class FakeClass {
public:
    FakeClass(const CLSID& clsid, FakeObject& factory)
    {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        CoRegisterClassObject(clsid, reinterpret_cast<IUnknown*>(&factory), CLSCTX_INPROC_SERVER,
                              REGCLS_MULTIPLEUSE, &registration);
    }
    FakeClass(const FakeClass&) = delete;
    FakeClass& operator=(const FakeClass&) = delete;
    ~FakeClass()
    {
        CoRevokeClassObject(registration);
        CoUninitialize();
    }

private:
    DWORD registration = 0;
};

}  // namespace kel::test
