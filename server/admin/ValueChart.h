#pragma once

#include <string>
#include <vector>

#include "server/admin/ReportQuery.h"
#include "server/admin/figures/ValueSample.h"
#include "server/admin/kit/Html.h"

namespace kel::server {

/// A condition of a product's newest requirements on a value.
struct AskedValue {
    Condition condition;
    std::string line;    // the label of its line
    bool ofAny = false;  // whether any one device may meet it
};

/// What sessions have of one value: sentences with the share that meets each condition, then for amounts how
/// many have at least each of them, otherwise how many have each text; the values are in a table that is
/// folded. The numbers link to those reports of `query`.
Html ValueChart(const ValueSample& sample, const std::vector<AskedValue>& asked, const ReportQuery& query);

}  // namespace kel::server
