#pragma once

#include "server/http/Router.h"
#include "server/protocol/Service.h"
#include "server/store/Store.h"

namespace kel::server {

/// The requests of the public door: the control's.
Router PublicRoutes(Service& service);

/// The requests of the operator's door.
Router AdminRoutes(Store& store);

}  // namespace kel::server
