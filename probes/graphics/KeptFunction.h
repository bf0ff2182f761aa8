#pragma once

#include "platform/ErrorMode.h"
#include "platform/Library.h"

namespace kel {

/// A function of a library that never unloads, since unloading graphics libraries crashes hosts; null when
/// either is missing.
template <typename Function>
Function* FindKept(const wchar_t* library, const char* name)
{
    const ErrorMode quiet;
    const HMODULE module = LoadSystemLibrary(library).release();
    return module != nullptr ? FindFunction<Function>(module, name) : nullptr;
}

}  // namespace kel
