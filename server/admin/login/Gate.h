#pragma once

#include <string>

#include "server/admin/login/AdminRequest.h"
#include "server/admin/login/Settings.h"

namespace kel::server {

/// Throws Fault 421 when the request may come from a stranger's page whose name was made to resolve to this
/// machine: its host is a name other than the loopback's and the configured one. An address is fine, and so
/// is no host at all: then no name was resolved, and checks and proxies may send either.
void CheckHost(const Request& request, const AdminSettings& settings);

/// Throws Fault 403 when a browser says that another site's page makes this request.
void CheckOrigin(const Request& request, const AdminSettings& settings);

/// Throws Fault 403 unless the token is that of the request's log-in.
void CheckToken(const AdminRequest& request, const std::string& token);

}  // namespace kel::server
