#pragma once

#include <string>
#include <vector>

#include "server/report/Report.h"
#include "server/verdict/Requirements.h"

namespace kel::server {

/// One condition, and whether the machine meets it.
struct VerdictPart {
    int group = 0;
    std::string needed;  // with the comparison: "at least 2 GB"
    std::string found;   // empty when the report has no such value
    Result result = Result::Unknown;
};

/// One requirement, and how the machine meets it.
struct VerdictLine {
    int group = 0;  // of the first alternative
    std::string label;
    std::string needed;  // with the comparison: "at least 2 GB"; of alternatives all: "…, or …"
    std::string found;   // empty when the report has no such value; of alternatives all: "…; …"
    Result result = Result::Unknown;
    std::string advice;
    bool recommended = false;
    std::vector<VerdictPart> parts = {};  // the alternatives; a plain line has one
};

/// Whether a machine meets a product's requirements.
struct Verdict {
    static constexpr std::size_t LongestFound = 1000;  // bytes; of a longer value the beginning is told
    /// Bytes of all values in the verdict: even with each byte escaped, a client gets less than the 16 MB
    /// that it takes. Values past that are shown as "…".
    static constexpr std::size_t MaxFoundTotal = 524'288;

    std::string title;
    std::vector<VerdictLine> lines;
    Result total = Result::Unknown;
};

/// Judges a report. A line with alternatives passes when one passes; else it is unknown when one is. One
/// failing line fails the whole; else one that is unknown leaves it unknown. Recommendations have no say, so
/// without any other line the whole is unknown.
Verdict Judge(const Requirements& requirements, const Report& report);

}  // namespace kel::server
