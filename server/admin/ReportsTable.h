#pragma once

#include <string>
#include <vector>

#include "server/admin/kit/Html.h"
#include "server/store/Reports.h"

namespace kel::server {

/// A table of reports, or a sentence instead when there are none.
Html ReportsTable(const std::string& caption, const std::vector<ReportLine>& lines, const Html& whenEmpty);

}  // namespace kel::server
