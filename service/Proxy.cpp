#include "service/Proxy.h"

#include <windows.h>

#include <wininet.h>

#include <memory>

#include "platform/Handles.h"

namespace kel {

namespace {

using OwnedText = std::unique_ptr<void, Closer<&GlobalFree>>;

/// Takes a text that WinINet has allocated.
std::wstring Take(const INTERNET_PER_CONN_OPTIONW& option)
{
    const OwnedText owner(option.Value.pszValue);
    return option.Value.pszValue != nullptr ? option.Value.pszValue : L"";
}

}  // namespace

std::wstring DescribeProxy()
{
    INTERNET_PER_CONN_OPTIONW options[3] = {};
    options[0].dwOption = INTERNET_PER_CONN_FLAGS;
    options[1].dwOption = INTERNET_PER_CONN_PROXY_SERVER;
    options[2].dwOption = INTERNET_PER_CONN_AUTOCONFIG_URL;
    INTERNET_PER_CONN_OPTION_LISTW list = {sizeof(list), nullptr, 3, 0, options};
    DWORD size = sizeof(list);
    if (!InternetQueryOptionW(nullptr, INTERNET_OPTION_PER_CONNECTION_OPTION, &list, &size))
        return L"unknown";
    const DWORD flags = options[0].Value.dwValue;
    const std::wstring proxy = Take(options[1]);
    const std::wstring script = Take(options[2]);
    if ((flags & PROXY_TYPE_AUTO_PROXY_URL) != 0 && !script.empty())
        return L"by the script " + script;
    if ((flags & PROXY_TYPE_PROXY) != 0 && !proxy.empty())
        return proxy;
    return (flags & PROXY_TYPE_AUTO_DETECT) != 0 ? L"detected" : L"none";
}

}  // namespace kel
