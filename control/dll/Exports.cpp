// The entry points of the DLL.
#include <windows.h>

#include <olectl.h>

#include <cwchar>

#include "Detection.h"
#include "control/ClassFactory.h"
#include "control/DetectionModule.h"

using kel::CDetectionModule;

STDAPI DllCanUnloadNow()
{
    return CDetectionModule::Instance().CanUnload() ? S_OK : S_FALSE;
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID riid, LPVOID* result)
{
    if (result == nullptr)
        return E_POINTER;
    *result = nullptr;
    return classId == CLSID_SysInfo ? kel::ClassFactory::Create(riid, result) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllRegisterServer()
{
    return CDetectionModule::Instance().Register(false);
}

STDAPI DllUnregisterServer()
{
    return CDetectionModule::Instance().Unregister(false);
}

/// @param commandLine "user" for the current user only, null or empty for all users
STDAPI DllInstall(BOOL install, LPCWSTR commandLine)
{
    const wchar_t* const text = commandLine != nullptr ? commandLine : L"";
    const bool forCurrentUser = _wcsicmp(text, L"user") == 0;
    // Does not fall back to all users: a mistyped "user" would remove their registration.
    if (!forCurrentUser && *text != L'\0')
        return E_INVALIDARG;
    CDetectionModule& module = CDetectionModule::Instance();
    return install ? module.Register(forCurrentUser) : module.Unregister(forCurrentUser);
}
