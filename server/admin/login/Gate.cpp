#include "server/admin/login/Gate.h"

#include <arpa/inet.h>

#include <array>

#include "server/admin/login/Secrets.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

/// Whether the host is an IPv4 address, or an IPv6 address in brackets.
bool IsAddress(std::string host)
{
    const bool isBracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    if (isBracketed)
        host = host.substr(1, host.size() - 2);
    std::array<unsigned char, sizeof(in6_addr)> address{};
    return inet_pton(isBracketed ? AF_INET6 : AF_INET, host.c_str(), address.data()) == 1;
}

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
    if (!request.Header("Host"))
        return;
    const std::string host = LowerHeader(request, "Host"), name = WithoutPort(host),
                      own = Lower(settings.host);
    if (name != "localhost" && !IsAddress(name) && (own.empty() || (host != own && name != own)))
        throw Fault(421,
                    "Unknown host name. Set admin_host to the name under which the administration is "
                    "reached.");
}

void CheckOrigin(const Request& request, const AdminSettings& settings)
{
    const std::string origin = LowerHeader(request, "Origin");
    if (!request.Header("Origin"))
        return;  // not a browser, or one that is too old to send an origin; the token decides
    const std::size_t slashes = origin.find("://");
    const std::string host = slashes == std::string::npos ? std::string() : origin.substr(slashes + 3);
    if (host.empty() || (host != LowerHeader(request, "Host") && host != Lower(settings.host)))
        throw Fault(403, "Another site's page sent this; nothing was changed.");
}

void CheckToken(const AdminRequest& request, const std::string& token)
{
    if (request.login.formToken.empty() || !EqualsInConstantTime(request.login.formToken, token))
        throw Fault(403,
                    "The form is not of this log-in; nothing was changed. Load its page again and send it "
                    "once more.");
}

}  // namespace kel::server
