#pragma once

#include <cstdint>
#include <vector>

#include "server/admin/ReportQuery.h"
#include "server/store/Reports.h"

namespace kel::server {

/// A part of a list of reports.
struct FoundReports {
    std::vector<ReportLine> lines;  // in the order of the filter
    /// The id where the search stopped before it had looked at everything, as it may not take too long: the
    /// next one goes on from there, in the same direction. 0 when it has not stopped.
    std::int64_t reached = 0;
};

/// Lists the reports of a query, at most filter.count, where `filter` is the query's own with the page's
/// bounds. The database reads an index for a result of a line, and the reports for a value of a report: one
/// stretch of them after the other, for a second and 32 MB at most.
FoundReports SearchReports(Database& database, const ReportQuery& query, ReportFilter filter);

}  // namespace kel::server
