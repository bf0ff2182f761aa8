#include "server/admin/Recent.h"

#include "server/http/Limits.h"

namespace kel::server {

namespace {

constexpr std::size_t MostBytes =
    32 * Limits::Megabyte;  // half a second's work; a usual report has some kilobytes

}  // namespace

int ForEachRecent(Store& store, const std::string& referrer, const std::function<void(const Report&)>& use)
{
    ReportFilter filter;
    filter.referrer = referrer;
    filter.count = RecentCount;
    int count = 0;
    std::size_t bytes = 0;
    for (const ReportLine& line : store.Reports(filter)) {
        const auto report = store.FindReport(line.id);
        if (!report)
            continue;
        bytes += report->body.size();
        if (bytes > MostBytes)
            break;
        use(Report::Read(report->body));
        ++count;
    }
    return count;
}

}  // namespace kel::server
