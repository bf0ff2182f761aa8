#include "service/ServiceHost.h"

#include <algorithm>

#include "BuildSettings.h"
#include "platform/Policy.h"

namespace kel {

namespace {

constexpr std::size_t MaxHost = 253, MaxLabel = 63;  // characters
constexpr std::size_t MaxEcho = 80;                  // of a text that is refused

struct Service {
    std::wstring host = KEL_SERVICE_HOST;
    bool isSecure = KEL_SERVICE_TLS != 0;
    const wchar_t* origin = L"built in";
    std::wstring refused;  // by a policy that was ignored
};

/// What a log can show of a text from elsewhere.
std::wstring Echo(const std::wstring& text)
{
    std::wstring shown = text.substr(0, MaxEcho);
    std::ranges::replace_if(
        shown, [](wchar_t c) { return c < L' ' || c > L'~'; }, L'?');
    return shown;
}

Service ChooseService()
{
    Service service;
    const std::optional<std::wstring>& policy = CurrentPolicy().serviceHost;
    if (!policy)
        return service;
    if (IsHostName(*policy)) {
        service.host = *policy;
        service.origin = L"policy";
    } else {
        service.refused =
            L"The policy ServiceHost is not the name of a host, and is ignored: \"" + Echo(*policy) + L"\"";
    }
    return service;
}

Service& Current()
{
    static Service service = ChooseService();
    return service;
}

}  // namespace

const std::wstring& ServiceHost()
{
    return Current().host;
}

bool IsServiceSecure()
{
    return Current().isSecure;
}

void SetServiceHost(const std::wstring& address)
{
    constexpr std::wstring_view Secure = L"https://";
    constexpr std::wstring_view Plain = L"http://";
    Service& service = Current();
    service = Service();
    service.host = address;
    service.origin = L"command line";
    if (!address.starts_with(Secure) && !address.starts_with(Plain))
        return;
    service.isSecure = address.starts_with(Secure);
    service.host.erase(0, service.isSecure ? Secure.size() : Plain.size());
}

std::wstring DescribeServiceHost()
{
    return Current().host + L" (" + Current().origin + L")";
}

std::wstring DescribeRefusedHost()
{
    return Current().refused;
}

bool IsHostName(std::wstring_view text)
{
    if (text.empty() || text.size() > MaxHost)
        return false;
    std::size_t label = 0;
    for (const wchar_t c : text) {
        const bool isDot = c == L'.';
        const bool isAllowed = (c >= L'0' && c <= L'9') || (c >= L'a' && c <= L'z') ||
                               (c >= L'A' && c <= L'Z') || c == L'-' || isDot;
        if (!isAllowed || (isDot && label == 0))
            return false;
        label = isDot ? 0 : label + 1;
        if (label > MaxLabel)
            return false;
    }
    return label > 0;
}

}  // namespace kel
