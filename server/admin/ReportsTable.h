#pragma once

#include <string>
#include <vector>

#include "server/admin/kit/Html.h"
#include "server/store/Reports.h"

namespace kel::server {

/// A table of reports with the titles of their products, or a sentence instead when there are none.
Html ReportsTable(Database& database, const std::string& caption, const std::vector<ReportLine>& lines,
                  const Html& whenEmpty);

}  // namespace kel::server
