#include "server/admin/figures/Recent.h"

#include <fmt/format.h>
#include <chrono>
#include <set>

#include "server/admin/kit/Texts.h"
#include "server/base/Fault.h"
#include "server/http/Limits.h"
#include "server/store/Reports.h"

namespace kel::server {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds MaxTime{1};
constexpr std::size_t ProductsAtOnce = 20;

/// The bounds of reading recent reports, in time and in bytes.
class ScanBudget {
public:
    /// Whether that many more bytes may be read; always true for the first ones.
    bool Allows(std::size_t more)
    {
        const bool isFirst = bytes == 0;
        bytes += more;
        return isFirst || (bytes <= MaxBytes && Clock::now() < end);
    }

private:
    static constexpr std::size_t MaxBytes = 32 * Limits::Megabyte;  // a usual report has some kilobytes

    Clock::time_point end = Clock::now() + MaxTime;
    std::size_t bytes = 0;
};

}  // namespace

std::string RecentSessions::Text() const
{
    return fmt::format("the last {} sessions{}", Grouped(count),
                       isCut ? " (older ones are left out: they would take too long)" : "");
}

std::optional<Report> ReadStored(const std::string& body)
{
    try {
        return Report::Read(body);
    } catch (const Fault&) {
        return std::nullopt;
    }
}

RecentSessions ForEachRecentReport(Database& database, const std::string& referrer,
                                   const std::function<void(const Report&)>& use)
{
    ReportFilter filter;
    filter.referrer = referrer;
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
        if (const auto read = ReadStored(report.body)) {
            use(*read);
            ++recent.count;
        }
        return true;
    });
    return recent;
}

RecentSessions ForEachRecentVerdict(Database& database, const std::string& referrer,
                                    const std::function<void(const StoredVerdict&)>& use)
{
    RecentSessions recent;
    ScanBudget budget;
    std::set<std::string> seen;
    Verdicts(database).ForEachRecent(referrer, RecentCount, [&](const StoredVerdict& verdict) {
        recent.isCut = !budget.Allows(verdict.lines.size());
        if (!recent.isCut && seen.insert(verdict.session).second) {
            use(verdict);
            ++recent.count;
        }
        return !recent.isCut;
    });
    return recent;
}

std::vector<Counts> RecentTotals(Database& database, const std::vector<Product>& products)
{
    std::vector<Counts> totals;
    const auto end = Clock::now() + MaxTime;
    while (totals.size() < products.size() && (totals.empty() || Clock::now() < end)) {
        std::vector<std::string> referrers;
        for (std::size_t i = totals.size(); i < products.size() && referrers.size() < ProductsAtOnce; ++i)
            referrers.push_back(products[i].referrer);
        const auto more = Verdicts(database).CountRecent(referrers, RecentCount);
        totals.insert(totals.end(), more.begin(), more.end());
    }
    return totals;
}

}  // namespace kel::server
