#pragma once

#include "server/base/Exchange.h"
#include "server/base/Metrics.h"
#include "server/store/Database.h"

namespace kel::server {

/// The metrics in the text format of Prometheus, version 0.0.4. Waits for no database.
Answer MetricsPage(const Metrics& metrics, const Database& database);

}  // namespace kel::server
