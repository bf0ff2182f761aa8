#pragma once

#include <vector>

#include "server/admin/kit/Html.h"
#include "verdict/Tally.h"

namespace kel::server {

/// A picture for a row of a table: the share of sessions that pass, by steps of time in their order, from
/// 0 % at its bottom to 100 % at its top. Steps without sessions are left out; empty without any.
Html Spark(const std::vector<Counts>& steps, std::size_t count);

}  // namespace kel::server
