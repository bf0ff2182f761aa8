#include "server/admin/ReportSearch.h"

#include <algorithm>

#include "server/admin/figures/Recent.h"
#include "server/admin/figures/ScanBudget.h"

namespace kel::server {

namespace {

constexpr int StretchVerdicts = 2000;  // whose lines one statement looks at
constexpr int StretchReports = 200;    // whose values are read at once

/// Adds the matching reports of a stretch; false when the budget does not allow to look at the whole stretch,
/// and then `reached` is the last one that was looked at.
bool AddMatches(Database& database, const ReportQuery& query, const std::vector<ReportLine>& stretch,
                int count, ScanBudget& budget, FoundReports& found)
{
    std::vector<std::int64_t> ids;
    for (const ReportLine& line : stretch)
        ids.push_back(line.id);
    bool isComplete = true;
    auto line = stretch.begin();
    Reports(database).ForEach(ids, [&](const FullReport& report) {
        isComplete = budget.Allows(report.body.size()) && static_cast<int>(found.lines.size()) < count;
        if (!isComplete)
            return false;
        found.reached = report.id;
        line = std::find_if(line, stretch.end(), [&](const ReportLine& one) { return one.id == report.id; });
        const auto read = ReadStored(report.body);
        if (read && line != stretch.end() && query.condition.Holds(*read))
            found.lines.push_back(*line);
        return true;
    });
    return isComplete;
}

}  // namespace

FoundReports SearchReports(Database& database, const ReportQuery& query, ReportFilter filter)
{
    Reports reports(database);
    FoundReports found;
    const bool isByValue = query.condition.IsGiven();
    // A session, a user and a machine have few reports.
    const bool isOfFew = !filter.session.empty() || !filter.beginnings.empty() || !filter.user.empty() ||
                         !filter.machine.empty();
    const bool isByLine = !isOfFew && (filter.line > 0 || filter.failing);
    if (!isByValue && !isByLine)
        return {reports.List(filter), 0};
    const bool isAscending = filter.afterId >= 0;
    const int count = filter.count;
    ScanBudget budget;     // of the reports that are read
    ScanBudget stretches;  // of the statements, of which the first always runs
    while (stretches.Allows(1)) {
        ReportFilter stretch = filter;
        std::int64_t end = 0;  // 0: everything is in the stretch
        if (isByLine) {
            end = reports.StretchEnd(filter, StretchVerdicts);
            (isAscending ? stretch.untilId : stretch.fromId) = end;
        }
        stretch.count = isByValue ? StretchReports : count - static_cast<int>(found.lines.size());
        const std::vector<ReportLine> lines = reports.List(stretch);
        const bool isWhole = static_cast<int>(lines.size()) < stretch.count;
        if (!isByValue)
            found.lines.insert(found.lines.end(), lines.begin(), lines.end());
        else if (!AddMatches(database, query, lines, count, budget, found))
            return found;
        if (static_cast<int>(found.lines.size()) >= count) {
            found.reached = found.lines.back().id;
            return found;
        }
        if (isWhole && end == 0) {
            found.reached = 0;
            return found;
        }
        found.reached = isWhole ? end : lines.back().id;
        (isAscending ? filter.afterId : filter.beforeId) = found.reached;
    }
    return found;
}

}  // namespace kel::server
