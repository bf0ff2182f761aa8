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
    /// Counts a stored verdict, line by line. A line counts for its place in its own version alone: several
    /// lines may ask for one value, and other versions may ask for other things.
    void Add(const StoredVerdict& verdict);

    /// A table for each of the newest versions, the lines that fail most first, and one for its
    /// recommendations. Reads the texts of these versions.
    Html Show(Database& database) const;

private:
    struct Version {
        int number = 0;
        int sessions = 0;
        std::vector<Counts> lines;
    };

    std::map<std::int64_t, Version> versions;  // by their sets
};

}  // namespace kel::server
