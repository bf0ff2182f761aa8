// The part of SqlStore that looks through reports and verdicts.
#include <algorithm>

#include "server/store/ReportRows.h"
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

const std::string ReportColumns = "SELECT id, session, referrer, \"user\", machine, received, body";

/// Ids ascend with the time but for what clocks differ by that are set right, or are several front ends':
/// milliseconds. Without bounds by id a look into the past would walk through everything that is newer.
constexpr std::int64_t Disorder = 3'600'000;

}  // namespace

std::vector<ReportLine> SqlStore::Reports(const ReportFilter& filter)
{
    const auto connection = readers->Borrow();
    // A session has few reports. What goes with one is kept from other indexes; and so is the time from its
    // own, by which the whole span would have to be sorted.
    const std::string apart(connection->NoIndex());
    const bool bySession = !filter.session.empty();
    const bool byTotal = !filter.total.empty();
    const std::string id = byTotal && !bySession ? "verdict.report" : "report.id";
    const std::string beside = bySession ? apart : "";
    Conditions conditions;
    const auto [after, before] = Span(*connection, filter);
    conditions.Add(id + " > ?", after);
    conditions.Add(id + " < ?", before);
    if (bySession)
        conditions.Add("session = ?", filter.session);
    if (!filter.referrer.empty())
        conditions.Add(beside + "report.referrer = ?", filter.referrer);
    if (byTotal) {
        conditions.Add(beside + "verdict.total = ?", filter.total);
        if (!filter.referrer.empty())
            conditions.Add(beside + "verdict.referrer = ?", IdOf(*connection, filter.referrer));
        conditions.text +=
            " AND requirement_set = (SELECT max(requirement_set) FROM verdict AS other "
            "WHERE other.report = verdict.report)";
    }
    if (filter.from > 0)
        conditions.Add(apart + "received >= ?", filter.from);
    if (filter.until > 0)
        conditions.Add(apart + "received < ?", filter.until);
    conditions.values.emplace_back(std::int64_t{filter.count});
    const std::string tables = byTotal
                                   ? "verdict.total FROM verdict JOIN report ON report.id = verdict.report"
                                   : "(SELECT total FROM verdict WHERE verdict.report = report.id "
                                     "ORDER BY requirement_set DESC LIMIT 1) FROM report";
    const SqlRows rows = connection->Query(
        "SELECT report.id, session, report.referrer, received, " + tables + conditions.text + " ORDER BY " +
            id + (filter.afterId >= 0 ? "" : " DESC") + " LIMIT " + conditions.Parameter(),
        conditions.values);
    std::vector<ReportLine> lines;
    for (const SqlRow& row : rows)
        lines.push_back({row.Number(0), row.Text(1), row.Text(2), row.Number(3), row.Text(4)});
    return lines;
}

/// 0 when there is none. Asked for by itself, so that the database knows how many rows the id has when it
/// plans.
std::int64_t SqlStore::IdOf(SqlConnection& connection, const std::string& referrer)
{
    const SqlRows rows = connection.Query("SELECT id FROM referrer WHERE name = $1", {referrer});
    return rows.empty() ? 0 : rows[0].Number(0);
}

/// The ids that all reports of the filter lie between.
std::pair<std::int64_t, std::int64_t> SqlStore::Span(SqlConnection& connection, const ReportFilter& filter)
{
    std::int64_t after = 0;
    std::int64_t before = std::numeric_limits<std::int64_t>::max();
    if (filter.beforeId > 0)
        before = filter.beforeId;
    if (filter.afterId >= 0) {
        after = filter.afterId;
        const std::int64_t settled = connection.SettledReport();
        before = settled < before ? settled + 1 : before;
    }
    if (filter.from > 0) {
        const SqlRows older =
            connection.Query("SELECT id FROM report WHERE received < $1 ORDER BY received DESC LIMIT 1",
                             {filter.from - Disorder});
        after = older.empty() ? after : std::max(after, older[0].Number(0));
    }
    if (filter.until > 0) {
        const SqlRows newer =
            connection.Query("SELECT id FROM report WHERE received >= $1 ORDER BY received LIMIT 1",
                             {filter.until + Disorder});
        before = newer.empty() ? before : std::min(before, newer[0].Number(0));
    }
    return {after, before};
}

std::optional<FullReport> SqlStore::FindReport(std::int64_t report)
{
    return First(Read(ReportColumns + " FROM report WHERE id = $1", {report}), ReportOf);
}

std::vector<StoredVerdict> SqlStore::VerdictsOf(std::int64_t report)
{
    return Each(
        Read(
            "SELECT verdict.report, report.session, name, requirement_set.id, version, judged, total, lines" +
                VerdictTables + "WHERE verdict.report = $1 ORDER BY requirement_set.id DESC",
            {report}),
        VerdictOf);
}

std::vector<FullReport> SqlStore::RecentReports(const std::string& referrer, int count)
{
    return Each(Read(ReportColumns + " FROM report WHERE referrer = $1 ORDER BY id DESC LIMIT $2",
                     {referrer, std::int64_t{count}}),
                ReportOf);
}

}  // namespace kel::server
