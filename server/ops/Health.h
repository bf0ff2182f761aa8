#pragma once

#include "server/base/Exchange.h"
#include "server/store/Store.h"

namespace kel::server {

/// Whether requests can be served: 200 when the database answers a question, which writes nothing; 503 with a
/// word otherwise. The log has the reason.
Answer Readiness(Store& store);

}  // namespace kel::server
