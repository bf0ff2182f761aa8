#include "server/admin/ReportSearch.h"

#include <algorithm>

#include "server/admin/figures/ScanBudget.h"
#include "server/store/DayCounts.h"
#include "server/store/RequirementSets.h"

namespace kel::server {

namespace {

constexpr int StretchVerdicts = 20'000;  // whose results one statement looks at
constexpr std::size_t MaxStretches = 10;
constexpr int StretchReports = 200;  // whose values are read at once

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
        ++found.looked;
        line = std::find_if(line, stretch.end(), [&](const ReportLine& one) { return one.id == report.id; });
        const auto read = Report::ReadStored(report.body, query.condition.Group());
        if (read && line != stretch.end() && query.condition.Holds(*read))
            found.lines.push_back(*line);
        return true;
    });
    return isComplete;
}

/// The days to look at, in the order of the search. Where the counts by day are of what is searched, these
/// are the ones that have it.
std::vector<Days> DaysToSearch(Database& database, const ReportQuery& query, const ReportFilter& filter)
{
    if (filter.line == 0 || !filter.isOnce)
        return {query.period.Range()};
    std::vector<Days> days;
    for (const PublishedSet& set : RequirementSets(database).Versions(filter.referrer)) {
        if (set.version == filter.version)
            days =
                DayCounts(database).DaysWith(set.id, filter.line, *filter.lineResult, query.period.Range());
    }
    if (filter.afterId >= 0)
        std::reverse(days.begin(), days.end());
    return days;
}

/// A search and what it has used up so far.
struct Search {
    bool isByLine = false;  // looks at the lines of verdicts
    ScanBudget reports{MaxSearchedBytes};
    ScanBudget stretches{MaxStretches};
    FoundReports found;
};

/// Searches the days of the filter, at least one stretch of them; false when the search ends with them:
/// enough is found, or a budget is used up. Then `reached` is the last report that was looked at.
bool SearchDays(Database& database, const ReportQuery& query, ReportFilter& filter, Search& search)
{
    Reports reports(database);
    FoundReports& found = search.found;
    const bool isByValue = query.condition.IsGiven();
    const bool isAscending = filter.afterId >= 0;
    do {
        ReportFilter stretch = filter;
        std::int64_t end = 0;  // 0: everything is in the stretch
        if (search.isByLine) {
            end = reports.StretchEnd(filter, StretchVerdicts);
            (isAscending ? stretch.untilId : stretch.fromId) = end;
        }
        stretch.count = isByValue ? StretchReports : filter.count - static_cast<int>(found.lines.size());
        const std::vector<ReportLine> lines = reports.List(stretch);
        const bool isWhole = static_cast<int>(lines.size()) < stretch.count;
        if (!isByValue)
            found.lines.insert(found.lines.end(), lines.begin(), lines.end());
        else if (!AddMatches(database, query, lines, filter.count, search.reports, found))
            return false;
        if (static_cast<int>(found.lines.size()) >= filter.count) {
            found.reached = found.lines.back().id;
            return false;
        }
        if (isWhole && end == 0) {
            found.reached = 0;
            return true;
        }
        found.reached = isWhole ? end : lines.back().id;
        (isAscending ? filter.afterId : filter.beforeId) = found.reached;
    } while (search.stretches.Allows(1));
    return false;
}

}  // namespace

FoundReports SearchReports(Database& database, const ReportQuery& query, ReportFilter filter)
{
    // A session, a user and a machine have few reports.
    const bool isOfFew = !filter.session.empty() || !filter.beginnings.empty() || !filter.user.empty() ||
                         !filter.machine.empty();
    Search search;
    search.isByLine = !isOfFew && (filter.line > 0 || filter.failing);
    if (!query.condition.IsGiven() && !search.isByLine)
        return {Reports(database).List(filter), 0, 0};
    // Between two ranges is a day or more, so that ids ascend from one to the next in spite of clocks.
    for (const Days& days : DaysToSearch(database, query, filter)) {
        if (days.from > 0)
            filter.from = days.from * DayLength;
        if (days.until < Days().until)
            filter.until = days.until * DayLength;
        if (!search.stretches.Allows(1)) {
            const std::int64_t next = Reports(database).StretchEnd(filter, 0);
            search.found.reached = next == 0 ? 0 : next + (filter.afterId >= 0 ? -1 : 1);
            if (next > 0)
                break;
        } else if (!SearchDays(database, query, filter, search)) {
            break;
        }
    }
    return std::move(search.found);
}

}  // namespace kel::server
