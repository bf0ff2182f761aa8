#pragma once

#include <string>
#include <vector>

#include "server/admin/figures/Distribution.h"
#include "server/admin/kit/Html.h"

namespace kel::server {

/// A bar chart as SVG, with its figures as a table beside it.
Html Chart(const std::string& title, const std::vector<Distribution::Bar>& bars);

}  // namespace kel::server
