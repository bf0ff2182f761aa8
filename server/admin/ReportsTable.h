#pragma once

#include <string>
#include <vector>

#include "server/admin/kit/Html.h"
#include "server/store/Reports.h"

namespace kel::server {

/// What is shown where the service has no report.
inline constexpr const char* NoReportsYet =
    "No reports yet. They appear once a page with the control asks this service for an analysis.";

/// A table of reports with the titles of their products, or a sentence instead when there are none.
Html ReportsTable(Database& database, const std::string& caption, const std::vector<ReportLine>& lines,
                  const Html& whenEmpty);

}  // namespace kel::server
