#pragma once

#include <windows.h>

#include "platform/RegistryValue.h"

namespace kel {

/// The key for registrations: HKEY_CLASSES_ROOT, or the current user's classes. In the second case this
/// process sees them as HKEY_CLASSES_ROOT while the object exists, so that the type library goes there as
/// well.
class ClassesRoot {
public:
    /// @throws RegistrationError when the user's classes cannot be opened
    explicit ClassesRoot(bool forCurrentUser);
    ClassesRoot(const ClassesRoot&) = delete;
    ClassesRoot& operator=(const ClassesRoot&) = delete;
    ~ClassesRoot();

    HKEY Key() const { return userClasses ? userClasses.get() : HKEY_CLASSES_ROOT; }

private:
    OwnedKey userClasses;
};

}  // namespace kel
