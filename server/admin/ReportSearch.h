#pragma once

#include <cstdint>
#include <vector>

#include "server/admin/ReportQuery.h"
#include "server/http/Limits.h"
#include "server/store/Reports.h"

namespace kel::server {

/// A part of a list of reports.
struct FoundReports {
    std::vector<ReportLine> lines;  // in the order of the filter
    /// The id where the search stopped before it had looked at everything, as it may not take too long: the
    /// next one goes on from there, in the same direction. 0 when it has not stopped.
    std::int64_t reached = 0;
    int looked = 0;  // reports whose values were compared
};

/// Bytes of reports that are read for one page; usual ones have some kilobytes.
inline constexpr std::size_t MaxSearchedBytes = 6 * Limits::Megabyte;

/// Lists the reports of a query, at most filter.count, where `filter` is the query's own with the page's
/// bounds. The database reads an index for a result of a line, and the reports for a value of a report: one
/// stretch of them after the other, for a second at most, and at most MaxSearchedBytes of reports.
FoundReports SearchReports(Database& database, const ReportQuery& query, ReportFilter filter);

}  // namespace kel::server
