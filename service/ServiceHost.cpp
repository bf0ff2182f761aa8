#include "service/ServiceHost.h"

#include <utility>

#include "BuildSettings.h"

namespace kel {

namespace {

std::wstring& Host()
{
    static std::wstring host = KEL_SERVICE_HOST;
    return host;
}

}  // namespace

const std::wstring& ServiceHost()
{
    return Host();
}

void SetServiceHost(std::wstring host)
{
    Host() = std::move(host);
}

}  // namespace kel
