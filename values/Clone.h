#pragma once

#include <new>

namespace kel {

/// A heap copy of a value, owned by the caller; null when memory is exhausted.
template <typename Concrete>
Concrete* CloneOf(const Concrete& value) noexcept
{
    try {
        return new (std::nothrow) Concrete(value);
    } catch (...) {
        return nullptr;
    }
}

}  // namespace kel
