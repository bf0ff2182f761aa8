#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "verdict/Requirements.h"

namespace kel {

/// The value of a group by its index, 0 being the first; nothing when the machine's report has no such value.
using ValueLookup = std::function<std::optional<std::string>(int group, int index)>;

/// One alternative, and whether the machine meets it.
struct VerdictPart {
    int group = 0;       // of its first condition
    std::string needed;  // with the comparison: "at least 2 GB"
    /// Such as "7.8 GB, sold as 8 GB". Empty when the machine has no such value; "not installed" for a
    /// version whose product is missing; "… and …" for several conditions; "…; …" for several devices when
    /// none of them meets it.
    std::string found;
    Result result = Result::Unknown;
};

/// One requirement, and how the machine meets it.
struct VerdictLine {
    int group = 0;  // of the first alternative
    std::string label;
    std::string needed;  // with the comparison: "at least 2 GB"; all alternatives: "…, or …"
    std::string found;   // empty when the machine has no such value; all alternatives: "…; …"
    Result result = Result::Unknown;
    std::string advice;
    bool recommended = false;
    std::vector<VerdictPart> parts = {};  // the alternatives; a plain line has one
    std::string neededText = {};          // for visitors; empty when the requirement has none

    /// What is needed, as a visitor reads it.
    const std::string& ShownNeeded() const { return neededText.empty() ? needed : neededText; }
};

/// Whether a machine meets a product's requirements.
struct Verdict {
    static constexpr std::size_t MaxFound = 1000;  // bytes; longer values are truncated
    static constexpr int MaxIndexes = 100;         // of a value; further ones are not judged
    /// Bytes of all values in the verdict; values past it are shown as "…". Even with each byte escaped, the
    /// verdict stays below the 16 MB that a client accepts.
    static constexpr std::size_t MaxFoundTotal = 524'288;

    std::string title;
    std::vector<VerdictLine> lines;
    Result total = Result::Unknown;
};

/// Judges a machine by its values. A condition on a version whose product is not installed fails. An
/// alternative with several conditions fails when one fails; otherwise it is unknown when one is unknown. A
/// line with alternatives passes when one passes; otherwise it is unknown when one is unknown. The same goes
/// for the devices of an alternative that may hold for any device. The total fails when a line fails;
/// otherwise it is unknown when a line is unknown. Recommendations do not affect it; without any other line
/// it is unknown.
/// Texts for visitors are in the first of the languages that the requirements have.
Verdict Judge(const Requirements& requirements, const ValueLookup& lookup, const Languages& languages = {});

/// The results of a verdict without its texts.
struct VerdictResults {
    std::vector<Result> lines;
    Result total = Result::Unknown;
};

/// The results that Judge gives, without the cost of the texts: for callers that judge many machines.
VerdictResults JudgeResults(const Requirements& requirements, const ValueLookup& lookup);

}  // namespace kel
