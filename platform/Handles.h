// Owner types for the platform's handles. Headers for other kinds of handles declare their own aliases.
#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace kel {

/// Calls one closing function of the platform; the deleter of the owners.
template <auto Close>
struct Closer {
    template <typename T>
    void operator()(T* handle) const noexcept
    {
        Close(handle);
    }
};

/// A kernel object: a thread, an event, a device.
using OwnedHandle = std::unique_ptr<std::remove_pointer_t<HANDLE>, Closer<&CloseHandle>>;

}  // namespace kel
