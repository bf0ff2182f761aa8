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

/// @param commandLine "user" registers for the current user only
STDAPI DllInstall(BOOL install, LPCWSTR commandLine)
{
    const bool forCurrentUser = commandLine != nullptr && _wcsicmp(commandLine, L"user") == 0;
    CDetectionModule& module = CDetectionModule::Instance();
    return install ? module.Register(forCurrentUser) : module.Unregister(forCurrentUser);
}
