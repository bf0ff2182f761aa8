#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "server/verdict/Comparison.h"

namespace kel::server {

/// One line of a product's requirements.
struct Requirement {
    int group = 0;
    std::string label;
    Comparison comparison = Comparison::Any;
    std::string needed;
    std::string advice;  // what a visitor can do about it
};

/// What a product needs.
struct Requirements {
    std::string title;
    std::vector<Requirement> lines;

    /// Reads the JSON form: {"title": …, "requirements": [{"id", "label", "comparison", "needed", "advice"},
    /// …]}, the last two optional. Throws std::runtime_error with what is wrong and in which line.
    static Requirements Read(std::string_view json);

    /// The ids of the groups that a report has to hold: session, referrer and user, then those of the lines,
    /// each once.
    std::vector<int> Groups() const;
};

}  // namespace kel::server
