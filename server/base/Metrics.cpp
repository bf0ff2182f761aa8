#include "server/base/Metrics.h"

#include <algorithm>

namespace kel::server {

void Histogram::Add(std::chrono::steady_clock::duration time)
{
    const double seconds = std::chrono::duration<double>(time).count();
    const auto* bound = std::lower_bound(Bounds.begin(), Bounds.end(), seconds);
    ++counts.at(static_cast<std::size_t>(bound - Bounds.begin()));
    nanoseconds += static_cast<std::uint64_t>(std::chrono::nanoseconds(time).count());
}

StatusCounts& EndpointMetrics::AddRoute(std::string_view method, std::string_view pattern)
{
    Route& route = routes.emplace_back();
    route.method = method;
    route.pattern = pattern;
    return route.counts;
}

void Metrics::AddVerdict(Result total)
{
    const auto* found = std::find(Totals.begin(), Totals.end(), total);
    ++verdicts.at(static_cast<std::size_t>(found - Totals.begin()));
}

}  // namespace kel::server
