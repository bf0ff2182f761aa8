// Owner types for the handles of the platform. A header that brings a kind of its own has its alias.
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
