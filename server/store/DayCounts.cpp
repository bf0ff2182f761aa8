#include "server/store/DayCounts.h"

#include <algorithm>

#include "server/store/ReportRows.h"

namespace kel::server {

namespace {

const std::string Sums = "sum(pass), sum(fail), sum(unknown) ";

const std::string SelectVersions =
    "SELECT name, version, requirement_set, published, " + Sums +
    "FROM day_verdicts JOIN requirement_set ON requirement_set.id = requirement_set "
    "JOIN referrer ON referrer.id = day_verdicts.referrer WHERE day >= $1 AND day < $2 ";

const std::string GroupVersions =
    "GROUP BY name, version, requirement_set, published HAVING sum(pass + fail + unknown) > 0 "
    "ORDER BY name, version DESC";

Counts ReadCounts(SqlRow& row)
{
    return {row.Small(), row.Small(), row.Small()};
}

VersionCount ReadVersion(SqlRow& row)
{
    return {row.Text(), row.Small(), row.Number(), row.Number(), ReadCounts(row)};
}

}  // namespace

std::vector<DayCount> DayCounts::ByDay(const std::string& referrer, const Days& days)
{
    const auto connection = database.BorrowReader();
    return Each(connection->Query("SELECT day, " + Sums +
                                      "FROM day_verdicts WHERE day >= $1 AND day < $2 AND referrer = $3 "
                                      "GROUP BY day HAVING sum(pass + fail + unknown) > 0 ORDER BY day",
                                  {days.from, days.until, ReferrerId(*connection, referrer)}),
                [](SqlRow& row) {
                    return DayCount{row.Number(), ReadCounts(row)};
                });
}

std::vector<VersionCount> DayCounts::ByVersion(const std::string& referrer, const Days& days)
{
    const auto connection = database.BorrowReader();
    return Each(connection->Query(SelectVersions + "AND day_verdicts.referrer = $3 " + GroupVersions,
                                  {days.from, days.until, ReferrerId(*connection, referrer)}),
                ReadVersion);
}

std::vector<VersionCount> DayCounts::OfAllProducts(const Days& days)
{
    return Each(database.Read(SelectVersions + GroupVersions, {days.from, days.until}), ReadVersion);
}

std::vector<Counts> DayCounts::Lines(std::int64_t set, const Days& days)
{
    std::vector<Counts> lines;
    for (SqlRow& row : database.Read("SELECT line, " + Sums +
                                         "FROM day_lines WHERE requirement_set = $1 AND day >= $2 "
                                         "AND day < $3 GROUP BY line ORDER BY line",
                                     {set, days.from, days.until})) {
        const auto line = static_cast<std::size_t>(row.Number());
        lines.resize(std::max(lines.size(), line + 1));
        lines[line] = ReadCounts(row);
    }
    return lines;
}

std::map<std::string, std::int64_t> DayCounts::Reports(const Days& days)
{
    std::map<std::string, std::int64_t> reports;
    for (SqlRow& row : database.Read("SELECT coalesce(name, ''), sum(reports) FROM day_reports "
                                     "LEFT JOIN referrer ON referrer.id = day_reports.referrer "
                                     "WHERE day >= $1 AND day < $2 GROUP BY 1",
                                     {days.from, days.until})) {
        const std::string name = row.Text();
        reports[name] = row.Number();
    }
    return reports;
}

}  // namespace kel::server
