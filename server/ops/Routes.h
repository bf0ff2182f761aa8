#pragma once

#include "server/admin/login/Settings.h"
#include "server/base/Metrics.h"
#include "server/http/Router.h"
#include "server/http/Server.h"
#include "server/protocol/Checks.h"
#include "server/protocol/Service.h"
#include "server/store/Database.h"

namespace kel::server {

/// The requests of the public endpoint: the control's, and those of pages below /v1/.
Router PublicRoutes(Service& service, Checks& checks, Metrics& metrics);

/// The checks at the operator's endpoint; like the pages there, they do not answer to a foreign host name.
Router AdminRoutes(Database& database, Metrics& metrics, const AdminSettings& settings);

/// The threads that answer a request at the public endpoint: group lists and the test file do not wait for
/// reports or pages.
Place PublicPlace(const Request& request);

/// The threads that answer a request at the operator's endpoint: no long request keeps a check waiting.
Place AdminPlace(const Request& request);

}  // namespace kel::server
