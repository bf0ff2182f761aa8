#pragma once

#include <functional>
#include <string>

#include "server/report/Report.h"
#include "server/store/Store.h"

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

/// Reads the newest report of each of a product's last sessions, one after the other, so that never more than
/// one is in memory. Stops after half a second, or when visitors sent large ones.
RecentSessions ForEachRecentReport(Store& store, const std::string& referrer,
                                   const std::function<void(const Report&)>& use);

/// The same with the newest verdict by the product's requirements, and some in memory.
RecentSessions ForEachRecentVerdict(Store& store, const std::string& referrer,
                                    const std::function<void(const StoredVerdict&)>& use);

}  // namespace kel::server
