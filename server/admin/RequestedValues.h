#pragma once

#include <optional>
#include <string>
#include <vector>

#include "server/admin/figures/Recent.h"
#include "server/admin/kit/Html.h"
#include "server/report/Report.h"
#include "verdict/Requirements.h"

namespace kel::server {

/// The values that a draft asks for: how many machines report each, and what an author should know about it.
class RequestedValues {
public:
    /// `inForce` are the published requirements, if there are any: machines report only what they ask for.
    RequestedValues(const Requirements& draft, const std::optional<Requirements>& inForce);

    /// Counts what a machine reports.
    void Count(const Report& report);

    /// The ids that the published requirements ask for, and no counted machine reports.
    std::vector<int> FindUnreported() const;

    /// A table with a row for each value. `sessions` are the ones that were counted.
    Html Show(const std::string& referrer, const RecentSessions& sessions) const;

private:
    struct Value {
        int id;
        int reports = 0;
        bool isAsked = false;  // by the published requirements
        std::string note;
    };

    std::vector<Value> values;
};

}  // namespace kel::server
