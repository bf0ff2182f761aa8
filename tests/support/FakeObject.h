#pragma once

#include <windows.h>

#include <array>

namespace kel::test {

/// A COM object of any interface, as its callers see it: a table of functions. A test gives those that are
/// called; the others fail. It belongs to the test, which sees by the count that nothing keeps it.
struct FakeObject {
    FakeObject()
    {
        table = slots.data();
        slots.fill(reinterpret_cast<void*>(+[] { return E_NOTIMPL; }));
        Answer(
            1, +[](FakeObject* self) { return static_cast<ULONG>(++self->references); });
        Answer(
            2, +[](FakeObject* self) { return static_cast<ULONG>(--self->references); });
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
        ++references;
        *out = reinterpret_cast<Interface*>(this);
        return S_OK;
    }

    void** table = nullptr;  // first, where callers look for it
    std::array<void*, 48> slots{};
    int references = 0;
};

}  // namespace kel::test
