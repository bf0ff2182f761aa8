#pragma once

#include <string>

#include "server/admin/login/AdminRequest.h"
#include "server/report/Report.h"

namespace kel::server {

/// A condition on a value of a report, as an address says it: value=71063, comparison=at least, text=8 GB.
/// It holds where a requirement of that kind passes; with of=any, for any one device instead of the first.
struct ValueCondition {
    int id = 0;  // 0: no condition
    std::string comparison = {}, text = {};
    bool ofAny = false;

    /// Reads the parameters; what is wrong with them becomes the problem.
    static ValueCondition Read(const AdminRequest& request, std::string& problem);

    bool IsGiven() const { return id > 0; }
    bool Holds(const Report& report) const;
};

}  // namespace kel::server
