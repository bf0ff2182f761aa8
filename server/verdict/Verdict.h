#pragma once

#include <string>
#include <vector>

#include "server/report/Report.h"
#include "server/verdict/Requirements.h"

namespace kel::server {

/// One requirement, and how the machine meets it.
struct VerdictLine {
    int group = 0;
    std::string label;
    std::string needed;  // with the comparison: "at least 2 GB"
    std::string found;   // empty when the report has no such value
    Result result = Result::Unknown;
    std::string advice;
};

/// Whether a machine meets a product's requirements.
struct Verdict {
    std::string title;
    std::vector<VerdictLine> lines;
    Result total = Result::Unknown;
};

/// Judges a report. One failing line fails the whole; else one that is unknown, or no line at all, leaves it
/// unknown.
Verdict Judge(const Requirements& requirements, const Report& report);

}  // namespace kel::server
