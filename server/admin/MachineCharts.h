#pragma once

#include <string>

#include "server/admin/ReportQuery.h"
#include "server/admin/kit/Html.h"

namespace kel::server {

/// What the machines of a product's sessions have, as far as their reports are still stored: charts of the
/// values that the newest requirements ask for, those first whose lines most sessions do not meet, of some
/// usual ones, and before all of `chosen`, an id (0: none) that a form offers among all that the reports
/// have.
Html MachineCharts(Database& database, const ReportQuery& sessions, int all, int chosen);

}  // namespace kel::server
