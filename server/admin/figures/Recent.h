#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "server/report/Report.h"
#include "server/store/RequirementSets.h"
#include "server/store/Verdicts.h"

namespace kel::server {

/// How many of the newest reports or verdicts the figures look at. Of each session the newest counts.
inline constexpr int RecentCount = 1000;

/// What figures are of.
struct RecentSessions {
    int count = 0;
    bool isCut = false;  // there are older ones, which would have taken too long

    /// "the last 12 sessions", and what was left out.
    std::string Text() const;
};

/// Reads a stored report; nothing when it is one that this program's rules refuse.
std::optional<Report> ReadStored(const std::string& body);

/// Passes the newest report of each of a product's last sessions to `use`, but for those that cannot be read.
/// Stops after a second, or when visitors sent large ones.
RecentSessions ForEachRecentReport(Database& database, const std::string& referrer,
                                   const std::function<void(const Report&)>& use);

/// The same with the newest verdict by the product's requirements.
RecentSessions ForEachRecentVerdict(Database& database, const std::string& referrer,
                                    const std::function<void(const StoredVerdict&)>& use);

/// The totals of each product's recent sessions; of the first products alone when all would take over a
/// second.
std::vector<Counts> RecentTotals(Database& database, const std::vector<Product>& products);

}  // namespace kel::server
