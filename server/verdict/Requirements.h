#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "server/verdict/Comparison.h"

namespace kel::server {

/// What a group's value has to be.
struct Condition {
    int group = 0;
    Comparison comparison = Comparison::Any;
    std::string needed;

    /// As a visitor reads it: "at least 2 GB".
    std::string Text() const;
};

/// One line of a product's requirements.
struct Requirement {
    std::string label;
    std::vector<Condition> anyOf;  // one at least; one of them has to hold
    std::string advice;            // what a visitor can do about it
    bool recommended = false;      // told, but without a say in the total

    /// As a visitor reads it: "at least 6 GB, or at least version 12.0".
    std::string Needed() const;
};

/// What a product needs.
struct Requirements {
    static constexpr std::size_t LongestFile = 1'048'576;  // bytes
    static constexpr std::size_t LongestText = 1000;       // bytes; each of title, label, needed, advice
    static constexpr std::size_t MostLines = 500;
    static constexpr std::size_t MostAlternatives = 20;  // of a line

    std::string title;
    std::vector<Requirement> lines;

    /// Reads the JSON form: {"title": …, "requirements": [{"label", "id", "comparison", "needed", "advice",
    /// "recommended"}, …]}, the last three optional. In the place of id, comparison and needed a line may
    /// have "any of", a list of such three. Throws std::runtime_error with what is wrong and in which line:
    /// an unknown name and a value of the wrong kind, a bound that is passed, a line that no value could
    /// meet. The reason is UTF-8 and some hundred bytes long at most.
    static Requirements Read(std::string_view json);
    /// The same for stored ones, which an older program may have accepted; nothing when something is wrong.
    static std::optional<Requirements> ReadStored(std::string_view json);

    /// The ids of the groups that a report has to hold: session, referrer and user, then those of the lines,
    /// each once.
    std::vector<int> Groups() const;
};

}  // namespace kel::server
