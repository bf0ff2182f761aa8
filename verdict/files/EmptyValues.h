#pragma once

#include <string>
#include <vector>

#include "verdict/Requirements.h"
#include "verdict/files/Snapshot.h"

namespace kel {

/// A value that a line of requirements asks for and a machine does not have.
struct EmptyValue {
    std::string label;  // of the line
    int group = 0;
    std::string name;
    std::string reason;  // why it is empty

    /// "NVIDIA [0] (72010): not there"
    std::string Text() const;
};

/// The empty values of the lines that do not pass, in the order of the lines.
/// @param verdict by these requirements
std::vector<EmptyValue> FindEmptyValues(const Requirements& requirements, const Verdict& verdict,
                                        const Snapshot& snapshot);

}  // namespace kel
