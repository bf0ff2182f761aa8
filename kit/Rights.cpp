#include "kit/Rights.h"

#include <windows.h>

#include <shellapi.h>

#include "platform/Handles.h"

namespace kel::kit {

bool HasRights()
{
    HANDLE opened = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened))
        return false;
    const OwnedHandle token(opened);
    TOKEN_ELEVATION elevation = {};
    DWORD size = 0;
    return GetTokenInformation(token.get(), TokenElevation, &elevation, sizeof(elevation), &size) &&
           elevation.TokenIsElevated != 0;
}

bool RunAsAdministrator(const std::wstring& program, const std::wstring& arguments)
{
    SHELLEXECUTEINFOW info = {};
    info.cbSize = sizeof(info);
    info.fMask = SEE_MASK_NOCLOSEPROCESS;
    info.lpVerb = L"runas";
    info.lpFile = program.c_str();
    info.lpParameters = arguments.c_str();
    info.nShow = SW_SHOWNORMAL;
    if (!ShellExecuteExW(&info) || info.hProcess == nullptr)
        return false;
    const OwnedHandle process(info.hProcess);
    WaitForSingleObject(process.get(), INFINITE);
    return true;
}

bool IsWine()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace kel::kit
