#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "server/admin/ReportQuery.h"
#include "server/base/Exchange.h"
#include "server/store/Reports.h"

namespace kel::server {

/// JSON: a list of objects. CSV: a row for each value of a report.
enum class ReportFormat { Json, Csv };

/// A report with its values and the total of its verdict, which may be empty.
std::string JsonEntry(const FullReport& report, const std::string& total);

/// Writes reports with their values in a format, piece by piece.
class ReportWriter {
public:
    explicit ReportWriter(ReportFormat format) : format(format) {}

    std::string_view ContentType() const;
    std::string Head() const;
    /// Passes the id of each report that still exists, and its text, to `use`, until that returns false.
    void ForEach(Database& database, const std::vector<ReportLine>& lines,
                 const std::function<bool(std::int64_t, const std::string&)>& use);
    /// `last` is the id after which a program goes on.
    std::string End(std::int64_t last) const;

private:
    ReportFormat format;
    bool isFirst = true;
};

/// An answer with all reports of the query that are stored when it begins, the oldest first. It is made while
/// it is sent, so that it takes the memory of a piece however many there are.
Answer AllReports(Database& database, const ReportQuery& query, ReportFilter filter, ReportFormat format);

}  // namespace kel::server
