#pragma once

#include "server/admin/login/Settings.h"
#include "server/base/Metrics.h"
#include "server/http/Router.h"
#include "server/http/Server.h"
#include "server/protocol/Service.h"
#include "server/store/Database.h"

namespace kel::server {

/// The requests of the public endpoint: the control's.
Router PublicRoutes(Service& service, Metrics& metrics);

/// The checks at the operator's endpoint; like the pages there they answer to no foreign host name.
Router AdminRoutes(Database& database, Metrics& metrics, const AdminSettings& settings);

/// The threads that answer a request at the public endpoint: group lists and the test file wait for no
/// report.
Place PublicPlace(const Request& request);

/// Those that answer one at the operator's endpoint: nobody's long work keeps a check waiting.
Place AdminPlace(const Request& request);

}  // namespace kel::server
