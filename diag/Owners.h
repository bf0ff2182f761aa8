// Owner types for the handles of the platform: one alias a kind, its closing function beside it.
#pragma once

#include <windows.h>

#include <wininet.h>

#include <memory>
#include <type_traits>

namespace kel {

/// Calls one closing function of the platform; the deleter of the owners below.
template <auto Close>
struct Closer {
    template <typename T>
    void operator()(T* handle) const noexcept
    {
        Close(handle);
    }
};

using OwnedLibrary = std::unique_ptr<std::remove_pointer_t<HMODULE>, Closer<&FreeLibrary>>;
using OwnedKey = std::unique_ptr<std::remove_pointer_t<HKEY>, Closer<&RegCloseKey>>;
using OwnedThread = std::unique_ptr<std::remove_pointer_t<HANDLE>, Closer<&CloseHandle>>;
using OwnedInternet = std::unique_ptr<void, Closer<&InternetCloseHandle>>;

/// Looks a function up by its name; null, with a warning in the log, when the library does not have it.
FARPROC FindProcedure(HMODULE library, const char* name) noexcept;

/// The same for a function of a known type.
template <typename Function>
Function* FindFunction(HMODULE library, const char* name) noexcept
{
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(FindProcedure(library, name)));
}

/// Opens a registry key; empty when it cannot be opened.
/// @param access the access rights as RegOpenKeyExW takes them
OwnedKey OpenKey(HKEY parent, const wchar_t* name, REGSAM access) noexcept;

}  // namespace kel
