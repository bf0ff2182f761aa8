#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "server/report/Report.h"
#include "server/store/RequirementSets.h"
#include "server/store/Verdicts.h"

namespace kel::server {

/// The number of newest reports or verdicts that figures are based on. Only the newest of each session
/// counts.
inline constexpr int RecentCount = 1000;

/// The sessions that figures are based on.
struct RecentSessions {
    int count = 0;
    bool isCut = false;  // older ones were left out, as they would have taken too long

    /// "the last 12 sessions", and whether older ones were left out.
    std::string Text() const;
};

/// Reads a stored report; nothing when this program's rules refuse it.
std::optional<Report> ReadStored(const std::string& body);

/// Passes the newest report of each of a product's last sessions to `use`, except those that cannot be read.
/// Stops after a second, or after 32 MB.
RecentSessions ForEachRecentReport(Database& database, const std::string& referrer,
                                   const std::function<void(const Report&)>& use);

/// The same with the newest verdict by the product's requirements.
RecentSessions ForEachRecentVerdict(Database& database, const std::string& referrer,
                                    const std::function<void(const StoredVerdict&)>& use);

/// The totals of each product's recent sessions; only of the first products when all would take over a
/// second.
std::vector<Counts> RecentTotals(Database& database, const std::vector<Product>& products);

}  // namespace kel::server
