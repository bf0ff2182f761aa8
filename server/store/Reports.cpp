#include "server/store/Reports.h"

#include <algorithm>
#include <limits>

#include "server/store/Conditions.h"
#include "server/store/ReportRows.h"

namespace kel::server {

namespace {

/// The conditions on reports that take several values.
class ReportConditions : public Conditions {
public:
    /// Adds a condition on an id of a report: its session begins with one of the texts, of which there are at
    /// most `max` and which end with an ASCII character. They and their ends have to outlive the conditions.
    void AddBeginnings(const std::string& column, const std::vector<std::string>& begins,
                       const std::vector<std::string>& ends)
    {
        std::string list;
        for (std::size_t i = 0; i < ReportFilter::MaxBeginnings; ++i) {
            const std::size_t place = std::min(i, begins.size() - 1);
            values.emplace_back(begins[place]);
            list += (i == 0 ? "SELECT id FROM report WHERE session >= "
                            : " UNION SELECT id FROM report WHERE session >= ") +
                    Parameter();
            values.emplace_back(ends[place]);
            list += " AND session < " + Parameter();
        }
        text += " AND " + column + " IN (" + list + ")";
    }

    /// Adds a condition on a verdict: one of the lines fails. The statement's text is the same for any lines.
    void AddFailing(const std::vector<LineOfSet>& lines)
    {
        std::string any;
        for (std::size_t i = 0; i < ReportFilter::MaxLines; ++i) {
            const LineOfSet line = i < lines.size() ? lines[i] : LineOfSet{0, 1};  // no version has the id 0
            const std::string letter = LetterOf(line.line) + " = 'f'";
            letters += (i == 0 ? "" : " OR ") + letter;
            values.emplace_back(line.set);
            any += (i == 0 ? "(requirement_set = " : " OR (requirement_set = ") + Parameter();
            any += " AND " + letter + ")";
        }
        text += " AND (" + any + ")";
    }

    /// Adds a condition on a verdict: the line, from 1 on, has that result.
    void AddLine(int line, Result result)
    {
        const std::string letter = LetterOf(line);
        Add(letter + " = ?", ToString(result).substr(0, 1));
        letters = letter + " = " + Parameter();
    }

    std::string letters;  // the part of these two conditions that the index of the verdicts has

private:
    /// An expression: the letter of the line's result. Its index has it, so the verdict is not read.
    std::string LetterOf(int line)
    {
        values.emplace_back(std::int64_t{line});
        return "substr(results, CAST(" + Parameter() + " AS INTEGER), 1)";
    }
};

/// Ids follow the time of receipt, except by the clock skew between front ends or after a clock correction
/// (ms). Without bounds on ids a query for old reports would scan everything that is newer.
constexpr std::int64_t MaxClockSkew = 3'600'000;

ReportLine ReadLine(SqlRow& row)
{
    return {row.Number(), row.Text(), row.Text(), row.Number(), ParseResult(row.Text())};
}

/// The range of ids that contains all reports of the filter.
std::pair<std::int64_t, std::int64_t> Span(SqlConnection& connection, const ReportFilter& filter)
{
    std::int64_t after = 0;
    std::int64_t before = std::numeric_limits<std::int64_t>::max();
    if (filter.beforeId > 0)
        before = filter.beforeId;
    if (filter.afterId >= 0) {
        after = filter.afterId;
        const std::int64_t stable = connection.LastStableReportId();
        before = stable < before ? stable + 1 : before;
    }
    if (filter.fromId > 0)
        after = std::max(after, filter.fromId - 1);
    if (filter.untilId > 0)
        before = std::min(before, filter.untilId + 1);
    if (filter.from > 0) {
        SqlRows older =
            connection.Query("SELECT id FROM report WHERE received < $1 ORDER BY received DESC LIMIT 1",
                             {filter.from - MaxClockSkew});
        after = older.empty() ? after : std::max(after, older[0].Number());
    }
    if (filter.until > 0) {
        SqlRows newer =
            connection.Query("SELECT id FROM report WHERE received >= $1 ORDER BY received LIMIT 1",
                             {filter.until + MaxClockSkew});
        before = newer.empty() ? before : std::min(before, newer[0].Number());
    }
    return {after, before};
}

/// The id of a version of the filter's referrer; 0 when there is none.
std::int64_t SetId(SqlConnection& connection, const ReportFilter& filter)
{
    SqlRows rows = connection.Query("SELECT id FROM requirement_set WHERE referrer = $1 AND version = $2",
                                    {ReferrerId(connection, filter.referrer), std::int64_t{filter.version}});
    return rows.empty() ? 0 : rows[0].Number();
}

}  // namespace

std::int64_t Reports::Add(const NewReport& report)
{
    const auto connection = database.BorrowForReport();
    SqlRows added = connection->Query(
        "INSERT INTO report (session, referrer, \"user\", machine, received, body) "
        "SELECT $1, $2, $3, $4, $5, $6 WHERE "
        "(SELECT count(*) FROM (SELECT 1 FROM report WHERE session = $1 LIMIT $7) AS others) < $7 "
        "RETURNING id",
        {report.session, report.referrer, report.user, report.machine, Now(), report.body,
         database.MaxSessionReports()});
    if (added.empty())
        throw NoRoom("the session has as many reports as session_reports allows");
    return added.at(0).Number();
}

std::optional<ReportId> Reports::NewestOf(const std::string& session)
{
    return First(database.Read("SELECT id, referrer FROM report WHERE session = $1 ORDER BY id DESC LIMIT 1",
                               {session}),
                 [](SqlRow& row) {
                     return ReportId{row.Number(), row.Text()};
                 });
}

int Reports::CountOfSession(const std::string& session, int max)
{
    return database
        .Read("SELECT count(*) FROM (SELECT 1 FROM report WHERE session = $1 LIMIT $2) AS found",
              {session, std::int64_t{max}})
        .at(0)
        .Small();
}

std::optional<FullReport> Reports::Find(std::int64_t report)
{
    return First(database.Read("SELECT id, session, referrer, \"user\", machine, received, body "
                               "FROM report WHERE id = $1",
                               {report}),
                 ReadReport);
}

std::vector<ReportLine> Reports::List(const ReportFilter& filter)
{
    const auto connection = database.BorrowReader();
    // A session, a user and a machine have few reports, so the other conditions of their query must not use
    // their indexes; nor must the time, since the whole range of ids would then have to be sorted.
    const std::string unindexed(connection->UnindexedPrefix());
    const bool isOfFew = !filter.session.empty() || !filter.beginnings.empty() || !filter.user.empty() ||
                         !filter.machine.empty();
    // These say which of a report's verdicts it is; otherwise it is the one by the newest requirements.
    const bool isGiven = filter.version > 0 || filter.isOnce;
    const bool byVerdict = filter.total || filter.line > 0 || filter.failing || isGiven;
    const std::string total(filter.total ? ToString(*filter.total) : "");
    const std::string id = byVerdict && !isOfFew ? "verdict.report" : "report.id";
    const std::string prefix = isOfFew ? unindexed : "";
    ReportConditions conditions;
    const auto [after, before] = Span(*connection, filter);
    conditions.Add(id + " > ?", after);
    conditions.Add(id + " < ?", before);
    std::vector<std::string> ends = filter.beginnings;
    for (std::string& end : ends)
        ++end.back();
    if (!filter.beginnings.empty())
        conditions.AddBeginnings("report.id", filter.beginnings, ends);
    if (!filter.session.empty())
        conditions.Add("session = ?", filter.session);
    if (!filter.user.empty())
        conditions.Add("\"user\" <> '' AND \"user\" = ?", filter.user);
    if (!filter.machine.empty())
        conditions.Add("machine <> '' AND machine = ?", filter.machine);
    if (!filter.referrer.empty() && !isGiven)
        conditions.Add(prefix + "report.referrer = ?", filter.referrer);
    if (filter.total)
        conditions.Add(prefix + "verdict.total = ?", total);
    std::string indexed = "report > $1 AND report < $2";
    if (byVerdict && !filter.referrer.empty()) {
        conditions.Add(prefix + "verdict.referrer = ?", ReferrerId(*connection, filter.referrer));
        indexed += " AND referrer = " + conditions.Parameter();
    }
    if (filter.version > 0)
        conditions.Add("requirement_set = ?", SetId(*connection, filter));
    if (filter.isOnce)
        conditions.text += " AND counted = 1";
    if (byVerdict && !isGiven)
        conditions.text +=
            " AND requirement_set = (SELECT max(requirement_set) FROM verdict AS other "
            "WHERE other.report = verdict.report)";
    if (filter.line > 0)
        conditions.AddLine(filter.line, *filter.lineResult);
    if (filter.failing)
        conditions.AddFailing(*filter.failing);
    if (!conditions.letters.empty() && !isOfFew)
        conditions.text +=
            connection->OnlyIndexed("verdict", "report", indexed + " AND (" + conditions.letters + ")");
    if (filter.from > 0)
        conditions.Add(unindexed + "received >= ?", filter.from);
    if (filter.until > 0)
        conditions.Add(unindexed + "received < ?", filter.until);
    conditions.values.emplace_back(std::int64_t{filter.count});
    const std::string tables = byVerdict
                                   ? "verdict.total FROM verdict JOIN report ON report.id = verdict.report"
                                   : "(SELECT total FROM verdict WHERE verdict.report = report.id "
                                     "ORDER BY requirement_set DESC LIMIT 1) FROM report";
    return Each(
        connection->Query("SELECT report.id, session, report.referrer, received, " + tables +
                              conditions.text + " ORDER BY " + id + (filter.afterId >= 0 ? "" : " DESC") +
                              " LIMIT " + conditions.Parameter(),
                          conditions.values),
        ReadLine);
}

std::int64_t Reports::StretchEnd(const ReportFilter& filter, int verdicts)
{
    const auto connection = database.BorrowReader();
    const auto [after, before] = Span(*connection, filter);
    SqlRows rows = connection->Query(
        std::string("SELECT report FROM verdict WHERE referrer = $1 AND report > $2 AND report < $3 ORDER BY "
                    "report ") +
            (filter.afterId >= 0 ? "" : "DESC ") + "LIMIT 1 OFFSET $4",
        {ReferrerId(*connection, filter.referrer), after, before, std::int64_t{verdicts}});
    return rows.empty() ? 0 : rows[0].Number();
}

std::int64_t Reports::NewestBefore(std::int64_t time)
{
    SqlRows rows = database.Read(
        "SELECT received FROM report WHERE received < $1 ORDER BY received DESC LIMIT 1", {time});
    return rows.empty() ? 0 : rows[0].Number();
}

}  // namespace kel::server
