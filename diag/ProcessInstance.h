#pragma once

#include <memory>

namespace kel {

/// The one instance of a class in this process: made on first use and never destroyed, so that nothing that
/// runs late finds it gone.
template <typename T>
T& ProcessInstance()
{
    static T* const instance = std::make_unique<T>().release();
    return *instance;
}

}  // namespace kel
