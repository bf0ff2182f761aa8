#pragma once

#include <optional>
#include <string>
#include <vector>

#include "verdict/Verdict.h"

namespace kel {

/// A value of a machine. Texts are UTF-8.
struct Fact {
    int id = 0;
    int index = 0;
    std::string text;
    std::string reason;  // why the text is empty; empty when that is not known
};

/// The name of a value: "GPU: name [1]" with its index where there are several; empty for an id that the
/// catalogue lacks.
std::string NameOf(const Fact& fact);

/// What is known of a machine: read from it, or from a file.
struct Snapshot {
    std::string time;     // UTC: "2026-01-31T12:00:00Z"; empty when the file does not have it, as the next
    std::string version;  // of the program that read the machine
    std::string windows;
    std::string host;  // the program's file name
    std::string product;
    std::vector<Fact> facts;    // in the order in which they were stored
    std::vector<Fact> missing;  // values of the catalogue that were not stored, with their reasons
    std::optional<Verdict> verdict;
    std::string log;

    /// The fact, also a missing one; null when there is none.
    const Fact* Find(int id, int index = 0) const;
    /// Its text; empty when there is none.
    std::string Text(int id) const;

    /// The values as the service keeps them, to be judged. This object has to outlive the look-up.
    ValueLookup Lookup() const&;
};

}  // namespace kel
