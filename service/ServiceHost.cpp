#include "service/ServiceHost.h"

#include <string_view>

#include "BuildSettings.h"

namespace kel {

namespace {

struct Service {
    std::wstring host = KEL_SERVICE_HOST;
    bool isSecure = KEL_SERVICE_TLS != 0;
};

Service& Current()
{
    static Service service;
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
    if (!address.starts_with(Secure) && !address.starts_with(Plain))
        return;
    service.isSecure = address.starts_with(Secure);
    service.host.erase(0, service.isSecure ? Secure.size() : Plain.size());
}

}  // namespace kel
