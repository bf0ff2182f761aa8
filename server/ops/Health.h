#pragma once

#include "server/base/Exchange.h"
#include "server/store/Database.h"

namespace kel::server {

/// Whether reports can be stored: 200 when the database answers a query that writes nothing, accepts writes
/// and has room; otherwise 503 with a short text. The log has the reason.
Answer Readiness(Database& database);

}  // namespace kel::server
