#pragma once

#include <string>
#include <vector>

#include "server/store/Records.h"
#include "server/verdict/Verdict.h"

namespace kel::server {

/// How machines meet requirements: all together, and line by line.
class LineCounts {
public:
    struct Line {
        std::string label, needed;
        Totals results;
    };

    /// Counts a verdict, which is by the same requirements as those before.
    void Add(const Verdict& verdict);

    Totals totals;
    std::vector<Line> lines;
};

/// Counts a result by its name: "pass", "fail", and "unknown" for all others.
void Count(Totals& totals, std::string_view result);

}  // namespace kel::server
