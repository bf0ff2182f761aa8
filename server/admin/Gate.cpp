#include "server/admin/Gate.h"

#include <algorithm>
#include <iterator>

#include "server/admin/Secrets.h"
#include "server/base/Text.h"

namespace kel::server {

namespace {

constexpr std::string_view LoopbackNames[] = {"localhost", "127.0.0.1", "[::1]"};

std::string WithoutPort(const std::string& host)
{
    const std::size_t colon = host.rfind(':');
    const bool hasPort =
        colon != std::string::npos && host.find_first_not_of("0123456789", colon + 1) == std::string::npos;
    return hasPort ? host.substr(0, colon) : host;
}

std::string LowerHeader(const Request& request, std::string_view name)
{
    const std::string* value = request.Header(name);
    return value ? Lower(*value) : std::string();
}

}  // namespace

void CheckHost(const Request& request, const AdminSettings& settings)
{
    const std::string host = LowerHeader(request, "Host"), name = WithoutPort(host),
                      own = Lower(settings.host);
    const bool isLoopback =
        std::find(std::begin(LoopbackNames), std::end(LoopbackNames), name) != std::end(LoopbackNames);
    if (!isLoopback && (own.empty() || (host != own && name != own)))
        throw Fault(421,
                    "This service does not answer under that name. The setting admin_host tells it one.");
}

void CheckOrigin(const Request& request, const AdminSettings& settings)
{
    const std::string origin = LowerHeader(request, "Origin");
    if (!request.Header("Origin"))
        return;  // no browser, or one that is too old to tell; the token decides
    const std::size_t slashes = origin.find("://");
    const std::string host = slashes == std::string::npos ? std::string() : origin.substr(slashes + 3);
    if (host.empty() || (host != LowerHeader(request, "Host") && host != Lower(settings.host)))
        throw Fault(403, "Another site's page sent this; nothing was changed.");
}

void CheckToken(const Visit& visit, const std::string& token)
{
    if (visit.login.formToken.empty() || !AreSame(visit.login.formToken, token))
        throw Fault(403,
                    "The form is not of this log-in; nothing was changed. Load its page again and send it "
                    "once more.");
}

}  // namespace kel::server
