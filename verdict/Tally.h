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
    int operator[](Result result) const
    {
        return result == Result::Pass ? pass : result == Result::Fail ? fail : unknown;
    }
    void Add(Result result) { ++(*this)[result]; }
    Counts& operator+=(const Counts& more)
    {
        pass += more.pass;
        fail += more.fail;
        unknown += more.unknown;
        return *this;
    }
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
    std::vector<LineTally> lines;

    explicit Tally(const Requirements& requirements);

    /// Counts a verdict by these requirements.
    void Count(const VerdictResults& verdict);
};

}  // namespace kel
