#pragma once

#include <optional>
#include <string>
#include <vector>

#include "server/admin/ReportQuery.h"
#include "server/admin/kit/Html.h"
#include "server/store/DayCounts.h"
#include "verdict/Requirements.h"

namespace kel::server {

/// How sessions met each line of one version of a product's requirements: a table of its lines, those first
/// that most sessions do not meet, and one of its recommendations. Each number links to its reports, which
/// are some of `query`. Several lines may ask for the same value, and other versions for other things, so
/// that a row is never of more than one line of one version.
class LineFigures {
public:
    /// Reads the text of the version, and its counts in the period of the query.
    LineFigures(Database& database, const VersionCount& version, const ReportQuery& query);

    /// The line that most sessions do not meet, as a sentence; nothing when all meet all.
    Html Sentence() const;
    Html Tables() const;

private:
    Html LineTable(const std::string& caption, const std::string& kind,
                   const std::vector<std::size_t>& places) const;

    VersionCount version;
    ReportQuery query;
    std::optional<Requirements> requirements;         // nothing when this program cannot read them
    std::vector<Counts> counts;                       // by line
    std::vector<std::size_t> lines, recommendations;  // places, in the order of the tables
};

}  // namespace kel::server
