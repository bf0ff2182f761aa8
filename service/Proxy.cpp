#include "service/Proxy.h"

#include <windows.h>

#include <wininet.h>

#include "platform/RegistryValue.h"

namespace kel {

namespace {

constexpr DWORD MaxSize = 16 * 1024;  // bytes, of WinINet's texts, and of the script's address
constexpr const wchar_t* UserSettings = L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";

}  // namespace

std::wstring DescribeProxy()
{
    const OwnedKey key = OpenKey(HKEY_CURRENT_USER, UserSettings, KEY_READ);
    std::wstring script;
    if (key && ReadStringValue(key.get(), L"AutoConfigURL", MaxSize, script) && !script.empty())
        return L"by the script " + script;
    union {
        INTERNET_PROXY_INFO info;
        BYTE texts[MaxSize];  // behind the structure, which points at them
    } answer = {};
    DWORD size = sizeof(answer);
    if (!InternetQueryOptionW(nullptr, INTERNET_OPTION_PROXY, &answer, &size))
        return L"unknown";
    const bool isSet =
        answer.info.dwAccessType == INTERNET_OPEN_TYPE_PROXY && answer.info.lpszProxy != nullptr;
    return isSet ? answer.info.lpszProxy : L"none";
}

}  // namespace kel
