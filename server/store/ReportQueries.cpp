// The part of SqlStore that looks through reports and verdicts.
#include "server/store/SqlStore.h"

namespace kel::server {

namespace {

/// A statement's conditions and their values, as they are added.
class Conditions {
public:
    /// Adds a condition in which ? stands for the value.
    void Add(std::string condition, SqlValue value)
    {
        values.push_back(value);
        condition.replace(condition.find('?'), 1, Parameter());
        text += (text.empty() ? " WHERE " : " AND ") + condition;
    }

    /// What stands for the last value.
    std::string Parameter() const { return std::string("$").append(std::to_string(values.size())); }

    std::string text;
    std::vector<SqlValue> values;
};

const std::string VerdictColumns =
    "SELECT verdict.report, report.session, name, requirement_set.id, version, judged, total, lines "
    "FROM verdict JOIN report ON report.id = verdict.report "
    "JOIN requirement_set ON requirement_set.id = verdict.requirement_set "
    "JOIN referrer ON referrer.id = verdict.referrer ";

std::vector<StoredVerdict> VerdictsIn(const SqlRows& rows)
{
    std::vector<StoredVerdict> verdicts;
    for (const SqlRow& row : rows)
        verdicts.push_back({row.Number(0), row.Text(1), row.Text(2), row.Number(3),
                            static_cast<int>(row.Number(4)), row.Number(5), row.Text(6), row.Text(7)});
    return verdicts;
}

const std::string ReportColumns =
    "SELECT id, session, referrer, \"user\", machine, received, body FROM report ";

std::vector<FullReport> ReportsIn(const SqlRows& rows)
{
    std::vector<FullReport> reports;
    for (const SqlRow& row : rows)
        reports.push_back(
            {row.Number(0), row.Text(1), row.Text(2), row.Text(3), row.Text(4), row.Number(5), row.Text(6)});
    return reports;
}

/// Ids ascend with the time, but for reports that arrive together: so far apart they may be swapped. Without
/// such bounds a look into the past would walk through everything that is newer.
const std::string Swapped = "1000";

}  // namespace

std::vector<ReportLine> SqlStore::Reports(const ReportFilter& filter)
{
    const bool byTotal = !filter.total.empty();
    const std::string id = byTotal ? "verdict.report" : "report.id";
    Conditions conditions;
    if (byTotal) {
        conditions.Add("verdict.total = ?", filter.total);
        if (!filter.referrer.empty())
            conditions.Add("verdict.referrer = (SELECT id FROM referrer WHERE name = ?)", filter.referrer);
        conditions.text +=
            " AND requirement_set = (SELECT max(requirement_set) FROM verdict AS other "
            "WHERE other.report = verdict.report)";
    } else if (!filter.referrer.empty()) {
        conditions.Add("report.referrer = ?", filter.referrer);
    }
    if (!filter.session.empty())
        conditions.Add("session = ?", filter.session);
    if (filter.from > 0) {
        conditions.Add("received >= ?", filter.from);
        conditions.Add(
            id + " >= coalesce((SELECT id FROM report WHERE received >= ? ORDER BY received LIMIT 1), 0) - " +
                Swapped,
            filter.from);
    }
    if (filter.until > 0) {
        conditions.Add("received < ?", filter.until);
        conditions.Add(id +
                           " <= coalesce((SELECT id FROM report WHERE received < ? ORDER BY received DESC "
                           "LIMIT 1), 0) + " +
                           Swapped,
                       filter.until);
    }
    if (filter.beforeId > 0)
        conditions.Add(id + " < ?", filter.beforeId);
    if (filter.afterId >= 0)
        conditions.Add(id + " > ?", filter.afterId);
    conditions.values.emplace_back(std::int64_t{filter.count});
    const std::string tables = byTotal
                                   ? "verdict.total FROM verdict JOIN report ON report.id = verdict.report"
                                   : "(SELECT total FROM verdict WHERE verdict.report = report.id "
                                     "ORDER BY requirement_set DESC LIMIT 1) FROM report";
    const SqlRows rows = Read("SELECT report.id, session, report.referrer, received, " + tables +
                                  conditions.text + " ORDER BY " + id + (filter.afterId >= 0 ? "" : " DESC") +
                                  " LIMIT " + conditions.Parameter(),
                              conditions.values);
    std::vector<ReportLine> lines;
    for (const SqlRow& row : rows)
        lines.push_back({row.Number(0), row.Text(1), row.Text(2), row.Number(3), row.Text(4)});
    return lines;
}

std::optional<FullReport> SqlStore::FindReport(std::int64_t report)
{
    const auto found = ReportsIn(Read(ReportColumns + "WHERE id = $1", {report}));
    return found.empty() ? std::nullopt : std::optional(found.front());
}

std::vector<StoredVerdict> SqlStore::VerdictsOf(std::int64_t report)
{
    return VerdictsIn(
        Read(VerdictColumns + "WHERE verdict.report = $1 ORDER BY requirement_set.id DESC", {report}));
}

std::vector<StoredVerdict> SqlStore::RecentVerdicts(const std::string& referrer, int count)
{
    return VerdictsIn(Read(VerdictColumns +
                               "WHERE verdict.referrer = (SELECT id FROM referrer WHERE name = $1) "
                               "ORDER BY verdict.report DESC, requirement_set.id DESC LIMIT $2",
                           {referrer, std::int64_t{count}}));
}

Totals SqlStore::RecentTotals(const std::string& referrer, int count)
{
    Totals totals;
    const SqlRows rows = Read(
        "SELECT total, count(*) FROM (SELECT total FROM verdict "
        "WHERE referrer = (SELECT id FROM referrer WHERE name = $1) ORDER BY report DESC LIMIT $2) AS recent "
        "GROUP BY total",
        {referrer, std::int64_t{count}});
    for (const SqlRow& row : rows) {
        int& number = row.Text(0) == "pass"   ? totals.pass
                      : row.Text(0) == "fail" ? totals.fail
                                              : totals.unknown;
        number = static_cast<int>(row.Number(1));
    }
    return totals;
}

std::vector<FullReport> SqlStore::RecentReports(const std::string& referrer, int count)
{
    return ReportsIn(Read(ReportColumns + "WHERE referrer = $1 ORDER BY id DESC LIMIT $2",
                          {referrer, std::int64_t{count}}));
}

int SqlStore::DeleteOlder(std::int64_t time, int most)
{
    return static_cast<int>(Write("DELETE FROM report WHERE id IN (SELECT id FROM report WHERE received < $1 "
                                  "ORDER BY received LIMIT $2) RETURNING id",
                                  {time, std::int64_t{most}})
                                .size());
}

int SqlStore::DeleteSession(const std::string& session, int most)
{
    return static_cast<int>(Write("DELETE FROM report WHERE id IN (SELECT id FROM report WHERE session = $1 "
                                  "ORDER BY id LIMIT $2) RETURNING id",
                                  {session, std::int64_t{most}})
                                .size());
}

int SqlStore::DeleteMachine(const std::string& machine, int most)
{
    return static_cast<int>(Write("DELETE FROM report WHERE id IN (SELECT id FROM report WHERE machine = $1 "
                                  "AND machine <> '' ORDER BY id LIMIT $2) RETURNING id",
                                  {machine, std::int64_t{most}})
                                .size());
}

}  // namespace kel::server
