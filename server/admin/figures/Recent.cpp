#include "server/admin/figures/Recent.h"

#include <fmt/format.h>
#include <chrono>
#include <set>

#include "server/admin/kit/Texts.h"
#include "server/base/Fault.h"
#include "server/http/Limits.h"

namespace kel::server {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds MaxTime{1};

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
        if (const auto read = ReadStored(report.body)) {
            use(*read, report.id);
            ++recent.count;
        }
        return true;
    });
    return recent;
}

}  // namespace kel::server
