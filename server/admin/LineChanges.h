#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "server/admin/kit/Html.h"
#include "verdict/Requirements.h"

namespace kel::server {

/// What became of a line of requirements.
struct LineChange {
    std::optional<std::size_t> before, after;  // its number in each, from 0 on; one of them may be missing
    bool isSame = false;                       // nothing that a verdict or a visitor sees is different
};

/// Pairs the lines of two versions of requirements: the same lines, or else those with the same label,
/// preferably of the same kind, or else those with the same conditions, in the order of the file. The lines
/// of `after` come first, in their order, then those that are gone.
std::vector<LineChange> CompareLines(const Requirements& before, const Requirements& after);

/// "new", "changed", "removed" or "same".
std::string ToString(const LineChange& change);

/// The conditions of a line with their ids: "71063 at least 4 GB, or 72008 at least version 12.0".
std::string DescribeConditions(const Requirement& line);

/// A table of the lines that differ, or a sentence when none does.
Html ChangesTable(const std::string& caption, const Requirements& before, const Requirements& after);

}  // namespace kel::server
