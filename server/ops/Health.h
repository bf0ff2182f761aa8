#pragma once

#include "server/base/Exchange.h"
#include "server/store/Database.h"

namespace kel::server {

/// Whether reports can be taken: 200 when the database answers a question, which writes nothing, takes writes
/// and has room; 503 with a word otherwise. The log has the reason.
Answer Readiness(Database& database);

}  // namespace kel::server
