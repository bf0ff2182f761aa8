#include "server/admin/figures/Recent.h"

#include <fmt/format.h>
#include <set>

#include "server/admin/figures/ScanBudget.h"
#include "server/admin/kit/Texts.h"

namespace kel::server {

std::string RecentSessions::Text() const
{
    return fmt::format("the last {} sessions{}", Grouped(count),
                       isCut ? " (older ones are left out: they would take too long)" : "");
}

RecentSessions ForEachRecentReport(Database& database, ReportFilter filter,
                                   const std::function<void(const Report&)>& use)
{
    return ForEachRecentReport(database, std::move(filter),
                               [&](const Report& report, std::int64_t) { use(report); });
}

RecentSessions ForEachRecentReport(Database& database, ReportFilter filter,
                                   const std::function<void(const Report&, std::int64_t id)>& use)
{
    filter.count = RecentCount;
    ScanBudget budget;
    std::set<std::string> seen;
    std::vector<std::int64_t> newest;
    for (const ReportLine& line : Reports(database).List(filter)) {
        if (seen.insert(line.session).second)
            newest.push_back(line.id);
    }
    RecentSessions recent;
    Reports(database).ForEach(newest, [&](const FullReport& report) {
        recent.isCut = !budget.Allows(report.body.size());
        if (recent.isCut)
            return false;
        if (const auto read = Report::ReadStored(report.body)) {
            use(*read, report.id);
            ++recent.count;
        }
        return true;
    });
    return recent;
}

}  // namespace kel::server
