#pragma once

#include "server/base/Exchange.h"
#include "server/base/Metrics.h"

namespace kel::server {

/// The metrics in the text format of Prometheus, version 0.0.4.
Answer MetricsPage(const Metrics& metrics);

}  // namespace kel::server
