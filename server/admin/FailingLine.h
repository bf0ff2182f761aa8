#pragma once

#include <string>
#include <vector>

#include "server/store/Reports.h"

namespace kel::server {

/// Where a product's versions, the newest MaxLines of those that have it, have a line of this label; upper
/// and lower case are the same.
std::vector<LineOfSet> FindLines(Database& database, const std::string& referrer, const std::string& label);

}  // namespace kel::server
