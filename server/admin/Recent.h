#pragma once

#include <functional>
#include <string>

#include "server/report/Report.h"
#include "server/store/Store.h"

namespace kel::server {

/// How many of the newest reports and verdicts the figures are of.
inline constexpr int RecentCount = 1000;

/// Reads the newest reports of a referrer one after the other, so that never more than one is in memory, and
/// stops before the time gets long when visitors sent large ones. How many it read.
int ForEachRecent(Store& store, const std::string& referrer, const std::function<void(const Report&)>& use);

}  // namespace kel::server
