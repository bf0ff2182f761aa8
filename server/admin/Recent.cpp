#include "server/admin/Recent.h"

#include <chrono>
#include <set>

#include "server/admin/Texts.h"
#include "server/http/Limits.h"

namespace kel::server {

namespace {

constexpr int Portion = 10;  // verdicts that are in memory together

/// What looking back may take.
class Allowance {
public:
    /// Whether so many bytes more may be worked on; the first ones in any case.
    bool Allows(std::size_t more)
    {
        const bool isFirst = bytes == 0;
        bytes += more;
        return isFirst || (bytes <= MostBytes && Clock::now() < end);
    }

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::size_t MostBytes = 32 * Limits::Megabyte;  // a usual report has some kilobytes

    Clock::time_point end = Clock::now() + std::chrono::milliseconds(500);
    std::size_t bytes = 0;
};

}  // namespace

std::string RecentSessions::Text() const
{
    return "the last " + Grouped(count) + " sessions" +
           (isCut ? " (older ones are left out: they would take too long)" : "");
}

RecentSessions ForEachRecentReport(Store& store, const std::string& referrer,
                                   const std::function<void(const Report&)>& use)
{
    ReportFilter filter;
    filter.referrer = referrer;
    filter.count = RecentCount;
    RecentSessions recent;
    Allowance allowance;
    std::set<std::string> seen;
    for (const ReportLine& line : store.Reports(filter)) {
        const auto report = seen.insert(line.session).second ? store.FindReport(line.id) : std::nullopt;
        if (!report)
            continue;
        recent.isCut = !allowance.Allows(report->body.size());
        if (recent.isCut)
            break;
        use(Report::Read(report->body));
        ++recent.count;
    }
    return recent;
}

RecentSessions ForEachRecentVerdict(Store& store, const std::string& referrer,
                                    const std::function<void(const StoredVerdict&)>& use)
{
    RecentSessions recent;
    Allowance allowance;
    std::set<std::string> seen;
    std::int64_t before = 0;
    for (int rest = RecentCount; rest > 0; rest -= Portion) {
        const auto verdicts = store.RecentVerdicts(referrer, before, Portion);
        for (const StoredVerdict& verdict : verdicts) {
            before = verdict.report;
            recent.isCut = !allowance.Allows(verdict.lines.size());
            if (recent.isCut)
                return recent;
            if (!seen.insert(verdict.session).second)
                continue;
            use(verdict);
            ++recent.count;
        }
        if (verdicts.empty())
            break;
    }
    return recent;
}

}  // namespace kel::server
