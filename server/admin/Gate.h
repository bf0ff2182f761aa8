#pragma once

#include <string>

#include "server/admin/Settings.h"
#include "server/admin/Visit.h"

namespace kel::server {

/// Throws Fault 421 when the request is for a host that is not this one: a stranger's page whose name was
/// made to lead here.
void CheckHost(const Request& request, const AdminSettings& settings);

/// Throws Fault 403 when a browser says that another site's page makes this request.
void CheckOrigin(const Request& request, const AdminSettings& settings);

/// Throws Fault 403 unless the token is that of the visit's log-in.
void CheckToken(const Visit& visit, const std::string& token);

}  // namespace kel::server
