// The part of Reports that reads many rows in a few statements.
#include <algorithm>

#include "server/store/Conditions.h"
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

const std::string Columns = "SELECT id, session, referrer, \"user\", machine, received, ";

/// As many of at most `count` reports, from the first on, as are read at once.
SqlRows ReadFitting(SqlConnection& connection, const std::vector<std::int64_t>& ids, std::size_t count,
                    const std::string& order)
{
    std::vector<SqlValue> values{MaxBytesAtOnce};
    // The number of parameters is always the same, so that few different statements are prepared.
    for (std::size_t i = 0; i < count; ++i)
        values.emplace_back(ids[std::min(i, ids.size() - 1)]);
    return connection.Query(Columns + TextIfItFits("body", "$1") + "FROM report JOIN (SELECT id AS found, " +
                                SizeColumns("body", order) + " FROM report WHERE id IN (" +
                                ParameterList(2, count) + ")) AS sized ON id = found ORDER BY " + order,
                            values);
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
            rows = count == 1 ? connection->Query(Columns + "body, 1 FROM report WHERE id = $1", {ids[next]})
                              : ReadFitting(*connection,
                                            {ids.begin() + static_cast<std::ptrdiff_t>(next),
                                             ids.begin() + static_cast<std::ptrdiff_t>(end)},
                                            count, order);
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

}  // namespace kel::server
