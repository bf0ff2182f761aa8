// The parts of Reports and Verdicts that read many rows in a few statements.
#include <algorithm>
#include <limits>
#include <map>

#include "server/store/ReportRows.h"

namespace kel::server {

namespace {

constexpr std::int64_t MaxBytesAtOnce = 4 * 1024 * 1024;

/// Columns of a subquery with, for each row in this order, its place, and the bytes of the large texts up to
/// and including its own.
std::string SizeColumns(const std::string& text, const std::string& order)
{
    return "row_number() OVER (ORDER BY " + order + ") AS place, sum(octet_length(" + text +
           ")) OVER (ORDER BY " + order + ") AS bytes";
}

/// With those columns: the large texts of the rows that fit into that many bytes, and always that of the
/// first row; then 1 for these rows and 0 for the others.
std::string TextIfItFits(const std::string& text, const std::string& maxBytes)
{
    const std::string fits = "CASE WHEN bytes <= " + maxBytes + " OR place = 1 THEN ";
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

void Reports::ForEach(const std::vector<std::int64_t>& ids, const std::function<bool(const FullReport&)>& use)
{
    const std::string order = ids.empty() || ids.front() <= ids.back() ? "id" : "id DESC";
    for (std::size_t next = 0; next < ids.size();) {
        SqlRows rows;
        std::size_t end = next;
        {
            const auto connection = database.BorrowReader();
            const std::size_t count = connection->LargeRowsAtOnce();
            end = std::min(next + count, ids.size());
            std::vector<SqlValue> values{MaxBytesAtOnce};
            // The number of parameters is always the same, so that few different statements are prepared.
            for (std::size_t i = next; i < next + count; ++i)
                values.emplace_back(ids[std::min(i, end - 1)]);
            rows =
                connection->Query("SELECT id, session, referrer, \"user\", machine, received, " +
                                      TextIfItFits("body", "$1") + "FROM report JOIN (SELECT id AS found, " +
                                      SizeColumns("body", order) + " FROM report WHERE id IN (" +
                                      Parameters(2, count) + ")) AS sized ON id = found ORDER BY " + order,
                                  values);
        }
        for (SqlRow& row : rows) {
            const FullReport report = ReadReport(row);
            if (row.Number() == 0) {
                end = static_cast<std::size_t>(std::find(ids.begin(), ids.end(), report.id) - ids.begin());
                break;
            }
            if (!use(report))
                return;
        }
        next = end;
    }
}

void Verdicts::ForEachRecent(const std::string& referrer, int count,
                             const std::function<bool(const StoredVerdict&)>& use)
{
    const std::string order = "verdict.report DESC, verdict.requirement_set DESC";
    std::int64_t report = std::numeric_limits<std::int64_t>::max(), set = 0, id = 0;
    for (bool isFirst = true; count > 0; isFirst = false) {
        SqlRows rows;
        int asked = 0;
        {
            const auto connection = database.BorrowReader();
            id = isFirst ? ReferrerId(*connection, referrer) : id;
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
        bool allFit = true;
        for (SqlRow& row : rows) {
            const StoredVerdict verdict = ReadVerdict(row);
            allFit = row.Number() == 1;
            if (!allFit)
                break;
            if (!use(verdict))
                return;
            report = verdict.report;
            set = verdict.set;
            --count;
        }
        if (allFit && static_cast<int>(rows.size()) < asked)
            return;
    }
}

std::vector<Counts> Verdicts::CountRecent(const std::vector<std::string>& referrers, int count)
{
    constexpr std::size_t AtOnce = 20;  // referrers
    // Always the same number of subqueries: unused ones get the id 0, which no referrer has.
    std::string newest;
    for (std::size_t i = 0; i < AtOnce; ++i)
        newest += (i == 0 ? "" : " UNION ALL ") +
                  ("SELECT * FROM (SELECT referrer, report, requirement_set, total FROM verdict WHERE "
                   "referrer = $" +
                   std::to_string(i + 2)) +
                  " ORDER BY report DESC, requirement_set DESC LIMIT $1) AS one";
    std::vector<Counts> totals(referrers.size());
    for (std::size_t begin = 0; begin < referrers.size(); begin += AtOnce) {
        const std::size_t end = std::min(begin + AtOnce, referrers.size());
        std::vector<SqlValue> names;
        for (std::size_t i = begin; i < begin + AtOnce; ++i)
            names.emplace_back(referrers[std::min(i, end - 1)]);
        const auto connection = database.BorrowReader();
        // A separate query, so that the database knows how many rows each id has when it plans the next one.
        std::map<std::string, std::int64_t> ids;
        for (SqlRow& row : connection->Query(
                 "SELECT name, id FROM referrer WHERE name IN (" + Parameters(1, AtOnce) + ")", names)) {
            const std::string name = row.Text();
            ids[name] = row.Number();
        }
        std::vector<SqlValue> values{std::int64_t{count}};
        std::map<std::int64_t, std::size_t> places;
        for (std::size_t i = begin; i < begin + AtOnce; ++i) {
            const auto found = i < end ? ids.find(referrers[i]) : ids.end();
            values.emplace_back(found == ids.end() ? 0 : found->second);
            if (found != ids.end())
                places[found->second] = i;
        }
        SqlRows rows = connection->Query(
            "SELECT referrer, total, count(*) FROM (SELECT recent.referrer, total, row_number() OVER "
            "(PARTITION BY recent.referrer, session ORDER BY recent.report DESC, requirement_set DESC) AS "
            "place "
            "FROM (" +
                newest +
                ") AS recent JOIN report ON report.id = recent.report) AS placed "
                "WHERE place = 1 GROUP BY referrer, total",
            values);
        for (SqlRow& row : rows) {
            Counts& counts = totals[places.at(row.Number())];
            const Result total = ParseResult(row.Text()).value_or(Result::Unknown);
            counts[total] = row.Small();
        }
    }
    return totals;
}

}  // namespace kel::server
