#pragma once

#include <string>
#include <vector>

#include "server/admin/kit/Html.h"
#include "server/store/Reports.h"

namespace kel::server {

/// Where a product's versions, the newest MaxLines of those that have it, have a line of this label; upper
/// and lower case are the same.
std::vector<LineOfSet> FindLines(Database& database, const std::string& referrer, const std::string& label);

/// A line, from 1 on, of a version of the product: "line 8 of version 3 (Memory)".
Html NameOfLine(Database& database, const std::string& referrer, int version, int line);

}  // namespace kel::server
