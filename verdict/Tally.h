#pragma once

#include <string>
#include <vector>

#include "verdict/Verdict.h"

namespace kel {

/// How often each result occurred.
struct Counts {
    int pass = 0, fail = 0, unknown = 0;

    int& operator[](Result result)
    {
        return result == Result::Pass ? pass : result == Result::Fail ? fail : unknown;
    }
    void Add(Result result) { ++(*this)[result]; }
    int All() const { return pass + fail + unknown; }
};

/// How machines meet one requirement.
struct LineTally : Counts {
    std::string label;
    std::string needed;  // as verdicts show it
    bool recommended = false;
};

/// How machines meet a product's requirements: the totals of their verdicts, and each line's results.
struct Tally : Counts {
    std::vector<LineTally> lines;  // none before the first verdict

    /// Counts a verdict. Throws std::invalid_argument, and counts nothing, when it is not by the same
    /// requirements as the first one.
    void Count(const Verdict& verdict);
};

}  // namespace kel
