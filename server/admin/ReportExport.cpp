#include "server/admin/ReportExport.h"

#include <algorithm>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "server/admin/ReportSearch.h"
#include "server/admin/figures/Recent.h"
#include "server/admin/kit/Texts.h"
#include "server/http/Limits.h"
#include "verdict/text/Csv.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxCellBytes = 200;                 // of each text that every row of a report repeats
constexpr std::size_t MaxReportCells = Limits::Megabyte;  // bytes of all of them together
constexpr int PieceReports = 100;

std::string Quoted(const std::string& text)
{
    using nlohmann::json;
    return json(text).dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string CsvRecords(const FullReport& report, const std::string& total)
{
    std::string records;
    const Report read = Report::ReadStored(report.body).value_or(Report());
    // Repeated for every value, they stay below the bound together.
    const std::size_t maxBytes =
        std::min(MaxCellBytes, MaxReportCells / std::max<std::size_t>(read.Count(), 1));
    const std::string session = Shortened(report.session, maxBytes), user = Shortened(report.user, maxBytes),
                      machine = Shortened(report.machine, maxBytes);
    for (const auto& [key, value] : read.All())
        records += CsvRecord({std::to_string(report.id), IsoTime(report.received), session, report.referrer,
                              user, machine, total, key.first, std::to_string(key.second), value});
    return records;
}

/// The reports of a query, piece by piece.
class ReportPieces {
public:
    ReportPieces(Database& database, ReportQuery query, ReportFilter filter, ReportFormat format)
        : database(database), query(std::move(query)), filter(std::move(filter)), writer(format)
    {
    }

    /// The next piece, which may be empty; nothing after the last one.
    std::optional<std::string> Next()
    {
        if (state == State::Ended)
            return std::nullopt;
        std::string piece;
        if (state == State::Begins) {
            piece = writer.Head();
            state = State::Continues;
        }
        const FoundReports found = SearchReports(database, query, filter);
        writer.ForEach(database, found.lines, [&](std::int64_t report, const std::string& more) {
            filter.afterId = report;
            piece += more;
            return piece.size() < Limits::Megabyte;
        });
        if (!found.lines.empty() && filter.afterId < found.lines.back().id)
            return piece;
        if (found.reached == 0 && static_cast<int>(found.lines.size()) < filter.count) {
            state = State::Ended;
            return piece + writer.End(filter.afterId);
        }
        filter.afterId = std::max(filter.afterId, found.reached);
        return piece;
    }

private:
    enum class State { Begins, Continues, Ended };

    Database& database;
    ReportQuery query;
    ReportFilter filter;
    ReportWriter writer;
    State state = State::Begins;
};

}  // namespace

/// Builds the text directly: as objects, a report of tiny values would take many times its memory.
std::string JsonEntry(const FullReport& report, const std::string& total)
{
    std::string entry =
        "{\"id\":" + std::to_string(report.id) + ",\"received\":" + Quoted(IsoTime(report.received)) +
        ",\"session\":" + Quoted(report.session) + ",\"referrer\":" + Quoted(report.referrer) +
        ",\"user\":" + Quoted(report.user) + ",\"machine\":" + Quoted(report.machine) +
        ",\"total\":" + Quoted(total) + ",\"values\":[";
    const Report read = Report::ReadStored(report.body).value_or(Report());
    for (const auto& [key, value] : read.All()) {
        entry += (entry.back() == '[' ? "{\"id\":" : ",{\"id\":") + Quoted(key.first);
        entry += ",\"index\":" + std::to_string(key.second) + ",\"value\":" + Quoted(value) + '}';
    }
    return entry + "]}";
}

std::string_view ReportWriter::ContentType() const
{
    return format == ReportFormat::Csv ? "text/csv; charset=utf-8; header=present" : "application/json";
}

std::string ReportWriter::Head() const
{
    return format == ReportFormat::Csv ? CsvRecord({"report", "received", "session", "referrer", "user",
                                                    "machine", "total", "id", "index", "value"})
                                       : "{\"reports\":[";
}

void ReportWriter::ForEach(Database& database, const std::vector<ReportLine>& lines,
                           const std::function<bool(std::int64_t, const std::string&)>& use)
{
    std::vector<std::int64_t> ids;
    std::map<std::int64_t, std::string> totals;
    for (const ReportLine& line : lines) {
        ids.push_back(line.id);
        totals[line.id] = line.total ? ToString(*line.total) : "";
    }
    Reports(database).ForEach(ids, [&](const FullReport& report) {
        const std::string& total = totals[report.id];
        const bool isCsv = format == ReportFormat::Csv;
        const std::string text = isCsv ? CsvRecords(report, total) : JsonEntry(report, total);
        const bool goesOn = use(report.id, isCsv || isFirst ? text : "," + text);
        isFirst = false;
        return goesOn;
    });
}

std::string ReportWriter::End(std::int64_t last) const
{
    return format == ReportFormat::Csv ? "" : "],\"last\":" + std::to_string(last) + "}";
}

Answer AllReports(Database& database, const ReportQuery& query, ReportFilter filter, ReportFormat format)
{
    ReportFilter newest;
    newest.count = 1;
    const auto lines = Reports(database).List(newest);
    filter.untilId =
        lines.empty() ? 0 : lines.front().id;  // or else the answer could grow as fast as it is sent
    filter.afterId = std::max<std::int64_t>(filter.afterId, 0);
    filter.count = PieceReports;
    const auto pieces = std::make_shared<ReportPieces>(database, query, filter, format);
    return Answer::InPieces(std::string(ReportWriter(format).ContentType()),
                            [pieces] { return pieces->Next(); });
}

}  // namespace kel::server
