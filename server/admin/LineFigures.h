#pragma once

#include <map>
#include <string>
#include <vector>

#include "server/admin/kit/Html.h"
#include "server/store/Verdicts.h"
#include "verdict/Tally.h"

namespace kel::server {

/// How a product's sessions met each line of its requirements, by the version that judged them.
class LineFigures {
public:
    /// Counts a stored verdict, line by line. A line counts only for its place in its own version: several
    /// lines may ask for the same value, and other versions may ask for other things.
    void Add(const StoredVerdict& verdict);

    /// For each of the newest versions a table of its lines, in descending order of failures, and one of its
    /// recommendations. Reads the texts of these versions.
    Html Show(Database& database) const;

private:
    struct Version {
        int number = 0;
        int sessions = 0;
        std::vector<Counts> lines;
    };

    std::map<std::int64_t, Version> versions;  // by the ids of their sets
};

}  // namespace kel::server
