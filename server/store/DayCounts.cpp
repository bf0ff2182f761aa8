#include "server/store/DayCounts.h"

#include <algorithm>

#include "server/store/Conditions.h"
#include "server/store/ReportRows.h"

namespace kel::server {

namespace {

const std::string Sums = "sum(pass), sum(fail), sum(unknown) ";

/// The versions of the rows of day_verdicts that meet the condition, summed up before their names are looked
/// up.
std::string VersionsWhere(const std::string& condition)
{
    return "SELECT name, version, set_id, published, pass, fail, unknown FROM (SELECT requirement_set AS "
           "set_id, "
           "sum(pass) AS pass, sum(fail) AS fail, sum(unknown) AS unknown FROM day_verdicts WHERE " +
           condition +
           " GROUP BY requirement_set) AS summed JOIN requirement_set ON requirement_set.id = set_id "
           "JOIN referrer ON referrer.id = requirement_set.referrer WHERE pass + fail + unknown > 0 ORDER BY "
           "name, version DESC";
}

/// A table of counts with parts.
struct PartsTable {
    std::string name;
    std::vector<std::string> key, counts;
};

const PartsTable PartsTables[] = {
    {"day_reports", {"referrer", "day"}, {"reports"}},
    {"day_verdicts", {"referrer", "day", "requirement_set"}, {"pass", "fail", "unknown"}},
    {"day_lines", {"requirement_set", "day", "line"}, {"pass", "fail", "unknown"}}};

/// A statement that moves the parts of the count with the key $1, $2 and so on to its part 0. A verdict that
/// changes one of them meanwhile waits, or is waited for; it cannot wait for two counts' parts at a time, so
/// that no two wait for each other.
std::string MergeStatement(const PartsTable& table)
{
    std::string key, condition, sums, changes;
    for (const std::string& column : table.key) {
        key += (key.empty() ? "" : ", ") + column;
        condition += column + " = $" + std::to_string(&column - table.key.data() + 1) + " AND ";
    }
    for (const std::string& column : table.counts) {
        sums += ", sum(" + column + ")";
        changes += (changes.empty() ? "" : ", ") + column + " = kept." + column + " + excluded." + column;
    }
    std::string columns = key + ", part";
    for (const std::string& column : table.counts)
        columns += ", " + column;
    return "WITH moved AS (DELETE FROM " + table.name + " WHERE " + condition +
           "part > 0 RETURNING *) INSERT INTO " + table.name + " AS kept (" + columns + ") SELECT " + key +
           ", 0" + sums + " FROM moved GROUP BY " + key + " ON CONFLICT (" + key + ", part) DO UPDATE SET " +
           changes;
}

Counts ReadCounts(SqlRow& row)
{
    return {row.Small(), row.Small(), row.Small()};
}

VersionCount ReadVersion(SqlRow& row)
{
    return {row.Text(), row.Small(), row.Number(), row.Number(), ReadCounts(row)};
}

}  // namespace

std::vector<DayCount> DayCounts::ByDay(const CountFilter& filter, const Days& days)
{
    const auto connection = database.BorrowReader();
    const bool isByLine = filter.line > 0;
    std::string condition = " WHERE day >= $1 AND day < $2";
    std::vector<SqlValue> values{days.from, days.until};
    const auto add = [&](const char* column, std::int64_t value) {
        values.emplace_back(value);
        condition.append(" AND ").append(column).append(" = $").append(std::to_string(values.size()));
    };
    if (!isByLine && !filter.referrer.empty())
        add("referrer", ReferrerId(*connection, filter.referrer));
    if (isByLine || filter.set > 0)
        add("requirement_set", filter.set);
    if (isByLine)
        add("line", std::int64_t{filter.line} - 1);
    return Each(
        connection->Query("SELECT day, " + Sums + "FROM " + (isByLine ? "day_lines" : "day_verdicts") +
                              condition + " GROUP BY day HAVING sum(pass + fail + unknown) > 0 ORDER BY day",
                          values),
        [](SqlRow& row) {
            return DayCount{row.Number(), ReadCounts(row)};
        });
}

std::vector<VersionCount> DayCounts::ByVersion(const std::string& referrer, const Days& days)
{
    const auto connection = database.BorrowReader();
    return Each(connection->Query(VersionsWhere("day >= $1 AND day < $2 AND referrer = $3"),
                                  {days.from, days.until, ReferrerId(*connection, referrer)}),
                ReadVersion);
}

std::vector<VersionCount> DayCounts::OfAllProducts(const Days& days)
{
    return Each(database.Read(VersionsWhere("day >= $1 AND day < $2"), {days.from, days.until}), ReadVersion);
}

std::map<std::string, std::vector<Counts>> DayCounts::Steps(const std::vector<std::string>& referrers,
                                                            const Days& days, std::int64_t stepDays)
{
    std::map<std::string, std::vector<Counts>> products;
    if (referrers.empty())
        return products;
    std::vector<SqlValue> wanted;
    for (std::size_t i = 0; i < MaxProducts; ++i)
        wanted.emplace_back(referrers[std::min(i, referrers.size() - 1)]);
    const auto connection = database.BorrowReader();
    // With names instead of ids in the next statement, PostgreSQL would read the counts of all products.
    std::map<std::int64_t, std::string> names;
    for (SqlRow& row : connection->Query(
             "SELECT id, name FROM referrer WHERE name IN (" + ParameterList(1, MaxProducts) + ")", wanted)) {
        const std::int64_t id = row.Number();
        names[id] = row.Text();
    }
    if (names.empty())
        return products;
    std::vector<SqlValue> values{days.from, days.until, stepDays};
    for (const auto& [id, name] : names)
        values.emplace_back(id);
    values.resize(3 + MaxProducts, names.begin()->first);
    for (SqlRow& row :
         connection->Query("SELECT referrer, (day - $1) / $3 AS step, " + Sums +
                               "FROM day_verdicts WHERE day >= $1 AND day < $2 AND referrer IN (" +
                               ParameterList(4, MaxProducts) + ") GROUP BY referrer, step",
                           values)) {
        std::vector<Counts>& steps = products[names.at(row.Number())];
        const auto step = static_cast<std::size_t>(row.Number());
        steps.resize(std::max(steps.size(), step + 1));
        steps[step] = ReadCounts(row);
    }
    return products;
}

std::optional<std::int64_t> DayCounts::FirstDay()
{
    return First(database.Read("SELECT day FROM day_verdicts ORDER BY day LIMIT 1"),
                 [](SqlRow& row) { return row.Number(); });
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

std::vector<Days> DayCounts::DaysWith(std::int64_t set, int line, Result result, const Days& days)
{
    std::vector<Days> ranges;
    for (SqlRow& row : database.Read(
             "SELECT day FROM day_lines WHERE requirement_set = $1 AND line = $2 AND day >= $3 AND day < $4 "
             "GROUP BY day HAVING sum(" +
                 std::string(ToString(result)) + ") > 0 ORDER BY day DESC",
             {set, std::int64_t{line} - 1, days.from, days.until})) {
        const std::int64_t day = row.Number();
        if (!ranges.empty() && ranges.back().from == day + 1)
            ranges.back().from = day;
        else
            ranges.push_back({day, day + 1});
    }
    return ranges;
}

std::map<std::string, std::int64_t> DayCounts::Reports(const Days& days)
{
    std::map<std::string, std::int64_t> reports;
    for (SqlRow& row :
         database.Read("SELECT coalesce(name, ''), total FROM (SELECT referrer AS named, sum(reports) "
                       "AS total FROM day_reports WHERE day >= $1 AND day < $2 GROUP BY referrer) "
                       "AS summed LEFT JOIN referrer ON referrer.id = named",
                       {days.from, days.until})) {
        const std::string name = row.Text();
        reports[name] = row.Number();
    }
    return reports;
}

void DayCounts::MergeParts(std::int64_t until, const std::function<bool()>& ends)
{
    if (!database.BorrowReader()->HasCountParts())
        return;
    for (const PartsTable& table : PartsTables) {
        const std::string merge = MergeStatement(table);
        std::string key;
        for (const std::string& column : table.key)
            key += (key.empty() ? "" : ", ") + column;
        for (SqlRow& row :
             database.Read("SELECT DISTINCT " + key + " FROM " + table.name + " WHERE part > 0 AND day < $1",
                           {until})) {
            if (ends())
                return;
            std::vector<SqlValue> values;
            for (std::size_t i = 0; i < table.key.size(); ++i)
                values.emplace_back(row.Number());
            database.Change([&](SqlConnection& connection) {
                connection.Query(merge, values);
                return true;
            });
        }
    }
}

}  // namespace kel::server
