// What a run leaves: a file for programs and a page for people.
#pragma once

#include <string>

#include "kit/Row.h"
#include "verdict/files/Snapshot.h"

namespace kel::kit {

struct Results {
    std::string version;  ///< of the kit
    std::string time;
    std::string windows;
    Rows rows;

    /// The rows with this result.
    std::size_t Count(State state) const;
};

/// Without serial numbers, names of people and machines, and addresses: the texts of the rows are masked as
/// those of kel's reports.
/// @param snapshot whose values look like addresses, but are not
void MaskResults(Results& results, const Snapshot& snapshot);

/// JSON.
std::string WriteResults(const Results& results);

/// The rows of such a text.
/// @throws FileError when it is not such a text
Rows ReadRows(const std::string& json);

/// HTML.
std::string WritePage(const Results& results);

}  // namespace kel::kit
