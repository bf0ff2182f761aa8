#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

namespace kel {

/// Registers and unregisters the type library in the DLL. For the current user it uses the system's functions
/// for that. Where these are missing or register for all users (Wine), it writes below the process's
/// HKEY_CLASSES_ROOT.
class TypeLibraryRegistrar {
public:
    explicit TypeLibraryRegistrar(bool forCurrentUser) noexcept;

    /// @param path the path of the DLL
    /// @throws RegistrationError
    void Register(std::wstring path) const;

    /// Does nothing when it is not registered.
    /// @throws RegistrationError
    void Unregister() const;

private:
    decltype(&::RegisterTypeLib) add = &::RegisterTypeLib;
    decltype(&::UnRegisterTypeLib) remove = &::UnRegisterTypeLib;
};

}  // namespace kel
