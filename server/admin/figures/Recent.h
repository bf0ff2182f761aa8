#pragma once

#include <functional>
#include <string>

#include "server/report/Report.h"
#include "server/store/Reports.h"

namespace kel::server {

/// The number of newest reports that figures are based on. Only the newest of each session
/// counts.
inline constexpr int RecentCount = 1000;

/// The sessions that figures are based on.
struct RecentSessions {
    int count = 0;
    bool isCut = false;  // older ones were left out, as they would have taken too long

    /// "the last 12 sessions", and whether older ones were left out.
    std::string Text() const;
};

/// Passes the reports of the filter to `use`, the newest of each session among the newest RecentCount, except
/// those that cannot be read. Stops after a second, or after 32 MB.
RecentSessions ForEachRecentReport(Database& database, ReportFilter filter,
                                   const std::function<void(const Report&)>& use);
/// The same, with the id of each report.
RecentSessions ForEachRecentReport(Database& database, ReportFilter filter,
                                   const std::function<void(const Report&, std::int64_t id)>& use);

}  // namespace kel::server
