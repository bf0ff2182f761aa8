#pragma once

#include <memory>

namespace kel {

/// The one instance of a class in this process: created on first use and never destroyed, so that code that
/// runs late can still use it.
template <typename T>
T& ProcessInstance()
{
    static T* const instance = std::make_unique<T>().release();
    return *instance;
}

}  // namespace kel
