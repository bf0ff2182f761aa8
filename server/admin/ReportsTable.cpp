#include "server/admin/ReportsTable.h"

#include "server/admin/Layout.h"
#include "server/admin/kit/Table.h"
#include "server/store/RequirementSets.h"
#include "verdict/text/Text.h"

namespace kel::server {

namespace {

constexpr std::size_t MaxSessionBytes = 60;  // that a list shows

}  // namespace

Html ReportsTable(Database& database, const std::string& caption, const std::vector<ReportLine>& lines,
                  const Html& whenEmpty)
{
    std::vector<std::string> referrers;
    for (const ReportLine& line : lines)
        referrers.push_back(line.referrer);
    auto titles = RequirementSets(database).Titles(referrers);
    Table table(caption, {{"Report"}, {"Received (UTC)"}, {"Product"}, {"Session"}, {"Verdict"}}, "dense");
    for (const ReportLine& line : lines) {
        table.Add({Link(ReportPath(line.id), std::to_string(line.id)), Moment(line.received),
                   line.referrer.empty() ? Html("–") : ProductLink(line.referrer, titles[line.referrer]),
                   Html::Stored(Shortened(line.session, MaxSessionBytes)), Mark(line.total)});
    }
    return table.Done(whenEmpty);
}

}  // namespace kel::server
