#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "verdict/Comparison.h"
#include "verdict/JsonPlaces.h"
#include "verdict/LocalText.h"

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
    LocalText label;
    std::vector<Alternative> anyOf;  // at least one; the line passes when one of them holds
    LocalText neededText;            // shown to visitors instead of what is needed, unless it is empty
    LocalText advice;                // what a visitor can do about it
    bool recommended = false;        // shown, but without effect on the total

    /// What is needed, in words of the comparisons: "at least 6 GB, or at least version 12.0".
    std::string Needed() const;
    /// The groups that it asks for, each once.
    std::vector<int> Groups() const;
};

/// What is wrong with a file of requirements: "requirement 2: unknown comparison 'about'".
class RequirementsError : public std::runtime_error {
public:
    explicit RequirementsError(const std::string& reason, JsonPath place = {}, int lineNumber = 0)
        : std::runtime_error(reason), path(std::move(place)), line(lineNumber)
    {
    }

    JsonPath path;  ///< of the entry that is wrong; empty for the whole file
    int line;       ///< from 1 on, of a text that is not JSON; otherwise 0
};

/// What a product needs.
struct Requirements {
    static constexpr std::size_t MaxFile = 1'048'576;  // bytes
    static constexpr std::size_t MaxText = 1000;       // bytes; each text, in each language
    static constexpr std::size_t MaxLines = 500;
    static constexpr std::size_t MaxAlternatives = 20;  // of a line
    static constexpr std::size_t MaxConditions = 20;    // of an alternative
    static constexpr std::size_t MaxPages = 50;
    static constexpr std::size_t MaxLanguages = 50;  // of a text

    LocalText title;
    std::vector<std::string> pages;  // origins whose scripts may read verdicts
    std::vector<Requirement> lines;

    /// Reads the JSON form: {"title": …, "pages": […], "requirements": [{"label", "id", "comparison",
    /// "needed", "of", "needed text", "advice", "recommended"}, …]}, the pages and the last five optional.
    /// Title, label, needed text and advice are texts, or objects with a text for each language ("en",
    /// "pt-br"). A page is an origin as browsers send it, such as "https://shop.example". Instead of id,
    /// comparison and needed a line may have "any of", a list of alternatives: objects with "label", "of" and
    /// either these three or "all of", a list of objects with these three. "of" is "any". Throws
    /// RequirementsError: an unknown name, a value of the wrong kind, an exceeded bound, a text that no value
    /// could satisfy. The message is UTF-8 and at most some hundred bytes long. What is read may still ask
    /// for values that do not exist; CheckRequirements finds these lines before they are published.
    static Requirements Read(std::string_view json);
    /// The same, but a line or a page that is wrong is left empty, and what is wrong is added to `errors`.
    static Requirements ReadPartly(std::string_view json, std::vector<RequirementsError>& errors);
    /// The same for stored requirements, which an older program may have accepted; nothing when they have a
    /// fault.
    static std::optional<Requirements> ReadStored(std::string_view json);

    /// The ids of the groups that a report has to have, each once: session, referrer and user, then those of
    /// the lines, a version followed by the value that says whether its product is installed.
    std::vector<int> Groups() const;
};

}  // namespace kel
