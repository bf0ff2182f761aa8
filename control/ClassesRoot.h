#pragma once

#include <windows.h>

#include "platform/RegistryValue.h"

namespace kel {

/// Where classes are registered: HKEY_CLASSES_ROOT, or the current user's classes. In the second case
/// HKEY_CLASSES_ROOT stands for them in this process as long as the object lives, so that the type library
/// goes there as well.
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
