#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "server/admin/figures/Recent.h"

namespace kel::server {

/// Reports whose verdict has a failing line.
struct FailingReports {
    std::vector<std::int64_t> ids;  // the newest first
    RecentSessions searched;

    /// Searches the newest verdicts of a product's last sessions for those in which a line of this label
    /// fails; upper and lower case are the same.
    static FailingReports Find(Database& database, const std::string& referrer, const std::string& label);
};

/// The results of a stored verdict's lines, in the order of the requirements.
std::vector<Result> ResultsOfLines(const StoredVerdict& verdict);

}  // namespace kel::server
