#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "server/store/Database.h"
#include "verdict/Tally.h"

namespace kel::server {

/// A day in milliseconds.
inline constexpr std::int64_t DayLength = 86'400'000;

/// Days since 1970, UTC: from the first one until, and without, the last one.
struct Days {
    std::int64_t from = 0, until = std::numeric_limits<std::int64_t>::max() / DayLength;
};

/// The sessions of a product by the total of their newest verdict, on the day of its report.
struct DayCount {
    std::int64_t day = 0;
    Counts sessions;
};

/// The sessions whose newest verdict is by one version of a product's requirements.
struct VersionCount {
    std::string referrer;
    int version = 0;
    std::int64_t set = 0, published = 0;
    Counts sessions;
};

/// The sessions of all days, or of all versions.
template <typename Part>
Counts SumSessions(const std::vector<Part>& parts)
{
    Counts sum;
    for (const Part& part : parts)
        sum += part.sessions;
    return sum;
}

/// Which sessions to count. Without a referrer, those of all products.
struct CountFilter {
    std::string referrer = {};
    std::int64_t set = 0;  // judged by this published set; 0: by any
    int line = 0;          // of that set, from 1 on: counted by the line's results; 0: by the total
};

/// The counts that uploads and verdicts keep by day (migrations/*/004_counts.sql). They cover all reports
/// that ever arrived; deleting reports does not change them.
class DayCounts {
public:
    static constexpr std::size_t MaxProducts = 20;  // of Steps

    explicit DayCounts(Database& database) : database(database) {}

    /// The days that have such sessions, in their order.
    std::vector<DayCount> ByDay(const CountFilter& filter, const Days& days);
    /// The versions by which a product's sessions were judged, the newest first.
    std::vector<VersionCount> ByVersion(const std::string& referrer, const Days& days);
    /// The same for all products, ordered by name, then with the newest version first.
    std::vector<VersionCount> OfAllProducts(const Days& days);
    /// The sessions of these products, at most MaxProducts, in steps of that many days, from the first day
    /// on; products without any are left out.
    std::map<std::string, std::vector<Counts>> Steps(const std::vector<std::string>& referrers,
                                                     const Days& days, std::int64_t stepDays);
    /// The first day with a session; nothing without any.
    std::optional<std::int64_t> FirstDay();
    /// For a published set, the results of each line, in the order of the lines.
    std::vector<Counts> Lines(std::int64_t set, const Days& days);
    /// The days on which sessions have that result of a published set's line, from 1 on, as ranges without a
    /// gap: the newest first.
    std::vector<Days> DaysWith(std::int64_t set, int line, Result result, const Days& days);
    /// How many reports arrived: for each product, and under "" for those without one.
    std::map<std::string, std::int64_t> Reports(const Days& days);

    /// Where counts have parts, makes one of those of each day before `until`, until `ends` returns true. The
    /// counts stay the same, and may change meanwhile. Each of them is a transaction.
    void MergeParts(
        std::int64_t until, const std::function<bool()>& ends = [] { return false; });

private:
    Database& database;
};

}  // namespace kel::server
