// The part of SqlStore that reads many reports and verdicts in a few statements.
#include <algorithm>
#include <limits>
#include <map>

#include "server/store/ReportRows.h"
#include "server/store/SqlStore.h"

namespace kel::server {

namespace {

constexpr std::int64_t MaxBytesAtOnce = 4 * 1024 * 1024;

/// Columns of a subquery that say of each row with a large text, in this order, where it stands and how many
/// bytes these texts have up to it.
std::string SizeColumns(const std::string& text, const std::string& order)
{
    return "row_number() OVER (ORDER BY " + order + ") AS place, sum(octet_length(" + text +
           ")) OVER (ORDER BY " + order + ") AS bytes";
}

/// With those columns: the large text of the rows that fit into so many bytes, and of the first row in any
/// case; then 1 for these rows and 0 for the others.
std::string TextIfItFits(const std::string& text, const std::string& most)
{
    const std::string fits = "CASE WHEN bytes <= " + most + " OR place = 1 THEN ";
    return fits + text + " ELSE '' END, " + fits + "1 ELSE 0 END ";
}

/// "$2, $3, $4"
std::string Parameters(std::size_t first, std::size_t count)
{
    std::string parameters;
    for (std::size_t i = first; i < first + count; ++i)
        parameters += (i == first ? "$" : ", $") + std::to_string(i);
    return parameters;
}

}  // namespace

void SqlStore::ForEachReport(const std::vector<std::int64_t>& ids,
                             const std::function<bool(const FullReport&)>& use)
{
    const std::string order = ids.empty() || ids.front() <= ids.back() ? "id" : "id DESC";
    for (std::size_t next = 0; next < ids.size();) {
        SqlRows rows;
        std::size_t end = next;
        {
            const auto connection = readers->Borrow();
            const std::size_t count = connection->LargeRowsAtOnce();
            end = std::min(next + count, ids.size());
            std::vector<SqlValue> values{MaxBytesAtOnce};
            // The number of parameters is the same each time, so that there are few statements to prepare.
            for (std::size_t i = next; i < next + count; ++i)
                values.emplace_back(ids[std::min(i, end - 1)]);
            rows =
                connection->Query("SELECT id, session, referrer, \"user\", machine, received, " +
                                      TextIfItFits("body", "$1") + "FROM report JOIN (SELECT id AS found, " +
                                      SizeColumns("body", order) + " FROM report WHERE id IN (" +
                                      Parameters(2, count) + ")) AS sized ON id = found ORDER BY " + order,
                                  values);
        }
        for (const SqlRow& row : rows) {
            if (row.Number(7) == 0) {
                end =
                    static_cast<std::size_t>(std::find(ids.begin(), ids.end(), row.Number(0)) - ids.begin());
                break;
            }
            if (!use(ReportOf(row)))
                return;
        }
        next = end;
    }
}

void SqlStore::ForEachRecentVerdict(const std::string& referrer, int count,
                                    const std::function<bool(const StoredVerdict&)>& use)
{
    const std::string order = "verdict.report DESC, verdict.requirement_set DESC";
    std::int64_t report = std::numeric_limits<std::int64_t>::max(), set = 0, id = 0;
    for (bool isFirst = true; count > 0; isFirst = false) {
        SqlRows rows;
        int asked = 0;
        {
            const auto connection = readers->Borrow();
            id = isFirst ? IdOf(*connection, referrer) : id;
            asked = std::min(count, static_cast<int>(connection->LargeRowsAtOnce()));
            rows = connection->Query(
                "SELECT verdict.report, report.session, name, requirement_set.id, version, judged, total, " +
                    TextIfItFits("lines", "$5") + VerdictTables +
                    "JOIN (SELECT report AS found, requirement_set AS by_set, " +
                    SizeColumns("lines", "report DESC, requirement_set DESC") +
                    " FROM (SELECT report, requirement_set, lines FROM verdict WHERE referrer = $1 AND "
                    "(report, requirement_set) < ($2, $3) ORDER BY " +
                    order +
                    " LIMIT $4) AS newest) AS sized "
                    "ON verdict.report = found AND verdict.requirement_set = by_set ORDER BY " +
                    order,
                {id, report, set, std::int64_t{asked}, MaxBytesAtOnce});
        }
        for (const SqlRow& row : rows) {
            if (row.Number(8) == 0)
                break;
            if (!use(VerdictOf(row)))
                return;
            report = row.Number(0);
            set = row.Number(3);
            --count;
        }
        if (static_cast<int>(rows.size()) < asked && (rows.empty() || rows.back().Number(8) == 1))
            return;
    }
}

std::vector<Totals> SqlStore::RecentTotals(const std::vector<std::string>& referrers, int count)
{
    constexpr std::size_t AtOnce = 20;  // referrers
    // The same number of subqueries each time: no referrer has the id 0, which stands in the rest.
    std::string newest;
    for (std::size_t i = 0; i < AtOnce; ++i)
        newest += (i == 0 ? "" : " UNION ALL ") +
                  ("SELECT * FROM (SELECT referrer, report, requirement_set, total FROM verdict WHERE "
                   "referrer = $" +
                   std::to_string(i + 2)) +
                  " ORDER BY report DESC, requirement_set DESC LIMIT $1) AS one";
    std::vector<Totals> totals(referrers.size());
    for (std::size_t begin = 0; begin < referrers.size(); begin += AtOnce) {
        const std::size_t end = std::min(begin + AtOnce, referrers.size());
        std::vector<SqlValue> names;
        for (std::size_t i = begin; i < begin + AtOnce; ++i)
            names.emplace_back(referrers[std::min(i, end - 1)]);
        const auto connection = readers->Borrow();
        // Asked for by themselves, so that the database knows how many rows each id has when it plans.
        std::map<std::string, std::int64_t> ids;
        for (const SqlRow& row : connection->Query(
                 "SELECT name, id FROM referrer WHERE name IN (" + Parameters(1, AtOnce) + ")", names))
            ids[row.Text(0)] = row.Number(1);
        std::vector<SqlValue> values{std::int64_t{count}};
        std::map<std::int64_t, std::size_t> places;
        for (std::size_t i = begin; i < begin + AtOnce; ++i) {
            const auto found = i < end ? ids.find(referrers[i]) : ids.end();
            values.emplace_back(found == ids.end() ? 0 : found->second);
            if (found != ids.end())
                places[found->second] = i;
        }
        const SqlRows rows = connection->Query(
            "SELECT referrer, total, count(*) FROM (SELECT recent.referrer, total, row_number() OVER "
            "(PARTITION BY recent.referrer, session ORDER BY recent.report DESC, requirement_set DESC) AS "
            "place "
            "FROM (" +
                newest +
                ") AS recent JOIN report ON report.id = recent.report) AS placed "
                "WHERE place = 1 GROUP BY referrer, total",
            values);
        for (const SqlRow& row : rows) {
            Totals& of = totals[places.at(row.Number(0))];
            (row.Text(1) == "pass" ? of.pass : row.Text(1) == "fail" ? of.fail : of.unknown) = Small(row, 2);
        }
    }
    return totals;
}

}  // namespace kel::server
