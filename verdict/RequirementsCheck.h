#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "verdict/Requirements.h"

namespace kel {

/// Something that is wrong with a text of requirements, or doubtful.
struct Finding {
    bool isError = true;
    int line = 0;      // of the text, from 1 on; 0 for the whole text
    std::string text;  // with the line: "line 9, requirement 2: unknown comparison 'about'"
};

/// A condition's place among the requirements, each number from 0 on.
struct ConditionPlace {
    std::size_t line = 0, alternative = 0, condition = 0;
};

/// Requirements, and all that was found in their text.
struct CheckedRequirements {
    static constexpr int MaxFindings = 30;  // of each kind, further ones are left out

    Requirements requirements;  // a line that could not be read has no alternative
    std::vector<Finding> findings;

    /// The first error, and how many others there are; empty when there is none.
    std::string ErrorText() const;
};

/// Reads requirements as they are written, for everything that publishes them or shows them to their author.
/// Finds what Requirements::Read refuses, and also: unknown ids, comparisons that do not fit the value,
/// conditions that never hold or always, names that occur twice; as warnings what is probably not meant.
CheckedRequirements CheckRequirements(std::string_view text);

/// The same, for a caller that only needs requirements without an error. Throws RequirementsError.
Requirements ReadChecked(std::string_view text);

/// A finding about an entry ("id", "needed") of a condition.
Finding MakeFinding(std::string_view text, bool isError, const ConditionPlace& place, const std::string& name,
                    const std::string& reason);

}  // namespace kel
