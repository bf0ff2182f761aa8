#pragma once

#include <string>

#include "server/store/Reports.h"
#include "server/store/Rows.h"
#include "server/store/Verdicts.h"

// Common parts of the statements about reports and verdicts.
namespace kel::server {

inline const std::string VerdictTables =
    " FROM verdict JOIN report ON report.id = verdict.report "
    "JOIN requirement_set ON requirement_set.id = verdict.requirement_set "
    "JOIN referrer ON referrer.id = verdict.referrer ";

/// Reads report, session, referrer, set, version, time, total, lines.
inline StoredVerdict ReadVerdict(SqlRow& row)
{
    return {row.Number(),
            row.Text(),
            row.Text(),
            row.Number(),
            row.Small(),
            row.Number(),
            ParseResult(row.Text()).value_or(Result::Unknown),
            row.Text()};
}

/// Reads id, session, referrer, user, machine, time, body.
inline FullReport ReadReport(SqlRow& row)
{
    return {row.Number(), row.Text(), row.Text(), row.Text(), row.Text(), row.Number(), row.Text()};
}

/// A referrer's id; 0 when there is none. This is a separate query, so that the database knows how many rows
/// the id has when it plans the next statement.
inline std::int64_t ReferrerId(SqlConnection& connection, const std::string& referrer)
{
    SqlRows rows = connection.Query("SELECT id FROM referrer WHERE name = $1", {referrer});
    return rows.empty() ? 0 : rows[0].Number();
}

}  // namespace kel::server
