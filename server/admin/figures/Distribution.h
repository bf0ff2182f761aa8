#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kel::server {

/// How often each value of one kind occurred.
class Distribution {
public:
    enum class Kind {
        Bytes,   // in steps that double
        Number,  // each separately, in ascending order
        Text     // each separately, the most frequent first
    };
    struct Bar {
        std::string label;
        int count = 0;
        bool isRest = false;  // "other" or "not reported"
    };

    static constexpr std::size_t MaxBars = 10;

    explicit Distribution(Kind kind) : kind(kind) {}

    /// Counts a value; null, and one that cannot be read, is "not reported".
    void Add(const std::string* value);
    /// The most frequent values, then "other" and "not reported" if they occurred.
    std::vector<Bar> Bars() const;

private:
    using Place = std::pair<double, std::string>;  // in the order of amounts, and its label

    Place ToPlace(const std::string& value) const;

    Kind kind;
    std::map<Place, int> counts;
    int unreported = 0;
};

}  // namespace kel::server
