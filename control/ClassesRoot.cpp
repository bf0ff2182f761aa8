#include "control/ClassesRoot.h"

#include "control/Registrar.h"

namespace kel {

ClassesRoot::ClassesRoot(bool forCurrentUser)
{
    if (!forCurrentUser)
        return;
    HKEY key = nullptr;
    const LSTATUS status = RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Classes", 0, nullptr, 0,
                                           KEY_ALL_ACCESS, nullptr, &key, nullptr);
    CheckRegistration(HRESULT_FROM_WIN32(static_cast<DWORD>(status)), "The user's classes cannot be opened.");
    userClasses.reset(key);
    CheckRegistration(HRESULT_FROM_WIN32(static_cast<DWORD>(RegOverridePredefKey(HKEY_CLASSES_ROOT, key))),
                      "The user's classes cannot be used.");
}

ClassesRoot::~ClassesRoot()
{
    if (userClasses)
        RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
}

}  // namespace kel
