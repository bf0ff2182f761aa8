#pragma once

#include <string>
#include <vector>

#include "server/admin/ReportQuery.h"
#include "server/admin/figures/Curve.h"
#include "server/admin/kit/Html.h"
#include "server/store/Database.h"
#include "server/store/RequirementSets.h"

namespace kel::server {

/// The sessions of a list of reports over time, from the counts by day: each session once, by its newest
/// verdict.
class SessionTrend {
public:
    /// Whether the counts by day know all restrictions of the list.
    static bool Knows(const ReportQuery& query);

    /// @param query a list that the counts know
    SessionTrend(Database& database, const ReportQuery& query);

    /// The share of the sessions with the list's verdict or result (usually pass), compared with the period
    /// before.
    Html Sentence() const;
    /// The curve of that share with the publications; empty without sessions.
    Html Show() const;

private:
    std::vector<DayCount> Count(const Period& period) const;
    ReportQuery Sessions(const Period& period, std::string_view result) const;
    std::vector<Curve::Publication> Publications() const;

    Database& database;
    ReportQuery query;
    Result shown;
    CountFilter filter;
    std::vector<PublishedSet> published;  // of the list's product
    std::vector<DayCount> days;
};

}  // namespace kel::server
