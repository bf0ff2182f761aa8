// Libraries and their functions, found by name.
#pragma once

#include <windows.h>

#include "platform/Handles.h"

namespace kel {

using OwnedLibrary = std::unique_ptr<std::remove_pointer_t<HMODULE>, Closer<&FreeLibrary>>;

/// Loads a library from the system's folder and from nowhere else; empty, with the reason in GetLastError,
/// when it is not there.
/// @param load the system's function, unless a test answers for it
OwnedLibrary LoadSystemLibrary(const wchar_t* name, decltype(&LoadLibraryExW) load = &LoadLibraryExW);

/// Looks a function up by its name; null, with a line in the log, when the library does not have it.
/// @param library null for a library that is not there
FARPROC FindProcedure(HMODULE library, const char* name) noexcept;

/// The same for a function of a known type.
template <typename Function>
Function* FindFunction(HMODULE library, const char* name) noexcept
{
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(FindProcedure(library, name)));
}

/// The same in a library that is loaded in every process, or that this module imports.
template <typename Function>
Function* FindLoadedFunction(const wchar_t* library, const char* name) noexcept
{
    return FindFunction<Function>(GetModuleHandleW(library), name);
}

/// Looks a function up in one of the system's libraries, which it loads and never unloads: unloading a
/// graphics library crashes hosts. Null, with a line in the log, when either is missing.
FARPROC FindPermanentProcedure(const wchar_t* library, const char* name);

/// The same for a function of a known type.
template <typename Function>
Function* PermanentFunction(const wchar_t* library, const char* name)
{
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(FindPermanentProcedure(library, name)));
}

/// The module that holds this code: the control's DLL.
/// @throws std::runtime_error when the system cannot return it; a null handle would mean the host's program
HMODULE ThisModule();

/// The same, and keeps it loaded until the process ends.
/// @throws std::runtime_error when the system does not
HMODULE PinThisModule();

}  // namespace kel
