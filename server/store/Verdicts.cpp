#include "server/store/Verdicts.h"

#include "server/store/ReportRows.h"

namespace kel::server {

std::string ResultLetters(const Verdict& verdict)
{
    std::string letters;
    for (const VerdictLine& line : verdict.lines)
        letters += ToString(line.result).front();
    return letters;
}

void Verdicts::Save(const NewVerdict& verdict)
{
    const auto connection = database.BorrowForVerdict();
    connection->Query(
        "INSERT INTO verdict (report, requirement_set, referrer, judged, item, total, lines, "
        "results) SELECT report.id, requirement_set.id, requirement_set.referrer, $1, $2, $3, $4, $5 "
        "FROM report, requirement_set WHERE report.id = $6 AND requirement_set.id = $7" +
            std::string(connection->ShareReports()) +
            " ON CONFLICT (report, requirement_set) DO UPDATE "
            "SET judged = excluded.judged, item = excluded.item, total = excluded.total, lines = "
            "excluded.lines, results = excluded.results",
        {Now(), verdict.item, ToString(verdict.total), verdict.lines, verdict.results, verdict.report,
         verdict.set});
}

std::vector<StoredVerdict> Verdicts::OnReport(std::int64_t report)
{
    return Each(
        database.Read(
            "SELECT verdict.report, report.session, name, requirement_set.id, version, judged, total, lines" +
                VerdictTables + "WHERE verdict.report = $1 ORDER BY requirement_set.id DESC",
            {report}),
        ReadVerdict);
}

}  // namespace kel::server
