#pragma once

#include "server/base/Metrics.h"
#include "server/http/Router.h"
#include "server/protocol/Service.h"
#include "server/store/Store.h"

namespace kel::server {

/// The requests of the public door: the control's.
Router PublicRoutes(Service& service, Metrics& metrics);

/// The requests of the operator's door.
Router AdminRoutes(Store& store, Metrics& metrics);

}  // namespace kel::server
