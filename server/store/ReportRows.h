#pragma once

#include <string>

#include "server/store/Records.h"
#include "server/store/Rows.h"

// What the statements about reports and verdicts have in common.
namespace kel::server {

inline const std::string VerdictTables =
    " FROM verdict JOIN report ON report.id = verdict.report "
    "JOIN requirement_set ON requirement_set.id = verdict.requirement_set "
    "JOIN referrer ON referrer.id = verdict.referrer ";

/// A row of report, session, referrer, set, version, time, total, lines.
inline StoredVerdict VerdictOf(const SqlRow& row)
{
    return {row.Number(0), row.Text(1),   row.Text(2), row.Number(3),
            Small(row, 4), row.Number(5), row.Text(6), row.Text(7)};
}

/// A row of id, session, referrer, user, machine, time, body.
inline FullReport ReportOf(const SqlRow& row)
{
    return {row.Number(0), row.Text(1), row.Text(2), row.Text(3), row.Text(4), row.Number(5), row.Text(6)};
}

}  // namespace kel::server
