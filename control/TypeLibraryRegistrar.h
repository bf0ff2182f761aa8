#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

namespace kel {

/// Registers the type library that the DLL carries, and takes it back: for the current user with the system's
/// functions for that, where it has them. Where it has none, or they register for all users (Wine), it goes
/// below what HKEY_CLASSES_ROOT stands for in the process.
class TypeLibraryRegistrar {
public:
    explicit TypeLibraryRegistrar(bool forCurrentUser) noexcept;

    /// @param path the DLL's
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
