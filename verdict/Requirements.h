#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "verdict/Comparison.h"

namespace kel {

/// The groups that identify a report, which every report has.
inline constexpr int SessionGroup = 71424, ReferrerGroup = 71218, UserGroup = 71206;

/// A condition on a value.
struct Condition {
    int group = 0;
    const Comparison* comparison = nullptr;  // never null in requirements that were read
    std::string needed;

    /// As a visitor reads it: "at least 2 GB".
    std::string Text() const;
};

/// One way to meet a line.
struct Alternative {
    std::vector<Condition> allOf;  // at least one; each has to hold
    bool ofAny = false;            // for any one device or installed version, instead of the first
    std::string label;             // shown instead of the conditions, unless it is empty

    /// As a visitor reads it: its label, or "contains NVIDIA and at least 6 GB (any of them)".
    std::string Text() const;
};

/// One line of a product's requirements.
struct Requirement {
    std::string label;
    std::vector<Alternative> anyOf;  // at least one; the line passes when one of them holds
    std::string advice;              // what a visitor can do about it
    bool recommended = false;        // shown, but without effect on the total

    /// As a visitor reads it: "at least 6 GB, or at least version 12.0".
    std::string Needed() const;
    /// The groups that it asks for, each once.
    std::vector<int> Groups() const;
};

/// What a product needs.
struct Requirements {
    static constexpr std::size_t MaxFile = 1'048'576;  // bytes
    static constexpr std::size_t MaxText = 1000;       // bytes; each of title, label, needed, advice
    static constexpr std::size_t MaxLines = 500;
    static constexpr std::size_t MaxAlternatives = 20;  // of a line
    static constexpr std::size_t MaxConditions = 20;    // of an alternative
    static constexpr std::size_t MaxPages = 50;

    std::string title;
    std::vector<std::string> pages;  // the origins whose scripts may read verdicts
    std::vector<Requirement> lines;

    /// Reads the JSON form: {"title": …, "pages": […], "requirements": [{"label", "id", "comparison",
    /// "needed", "of", "advice", "recommended"}, …]}, the pages and the last four optional. A page is an
    /// origin as browsers send it, such as "https://shop.example". Instead of id, comparison and needed a
    /// line may have "any of", a list of alternatives: objects with "label", "of" and either these three or
    /// "all of", a list of objects with these three. "of" is "any". Throws std::runtime_error with the fault
    /// and its line: an unknown name, a value of the wrong kind, an exceeded bound, a line that no value
    /// could satisfy. The message is UTF-8 and at most some hundred bytes long.
    static Requirements Read(std::string_view json);
    /// The same for stored requirements, which an older program may have accepted; nothing when they have a
    /// fault.
    static std::optional<Requirements> ReadStored(std::string_view json);

    /// The ids of the groups that a report has to have, each once: session, referrer and user, then those of
    /// the lines, a version followed by the value that says whether its product is installed.
    std::vector<int> Groups() const;
};

}  // namespace kel
