#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "server/admin/login/AdminRequest.h"
#include "server/report/Report.h"
#include "verdict/Requirements.h"
#include "verdict/Result.h"

namespace kel::server {

/// A condition on a value of a report, as an address says it: value=71063, comparison=at least, text=8 GB.
/// It holds where a requirement of that kind passes, or with outcome=fail or unknown where it has that
/// result; with of=any, for any one device instead of the first.
struct ValueCondition {
    static constexpr std::size_t MaxLinkedBytes = 200;  // of a text; an address has a limit

    int id = 0;  // 0: no condition
    std::string comparison = {}, text = {};
    bool ofAny = false;
    Result outcome = Result::Pass;

    /// Reads the parameters; what is wrong with them becomes the problem.
    static ValueCondition Read(const AdminRequest& request, std::string& problem);

    /// What reports meet whose result of a line is that; nothing for a line of several conditions, or with a
    /// text that is too long for a link.
    static std::optional<ValueCondition> OfLine(const Requirement& line, Result outcome);

    bool IsGiven() const { return id > 0; }
    /// The group that Holds has to know of; 0 for several.
    int Group() const { return outcome == Result::Pass ? id : 0; }
    bool Holds(const Report& report) const;
};

}  // namespace kel::server
