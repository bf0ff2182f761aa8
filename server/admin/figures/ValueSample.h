#pragma once

#include <map>
#include <string>
#include <vector>

#include "server/report/Report.h"
#include "verdict/Requirements.h"

namespace kel::server {

/// What sessions report for one value, of the first device where there are several.
class ValueSample {
public:
    /// Sessions whose value is, or is at least, that of the label.
    struct Step {
        std::string label;
        int count = 0;
        bool isAsked = false;  // a requirement needs it
    };

    static constexpr std::size_t MaxSteps = 10;

    explicit ValueSample(int id);

    /// Counts the value of a session's report.
    void Add(const Report& report);

    int Id() const { return id; }
    int Reported() const { return reported; }
    int Unreported() const { return unreported; }
    /// Whether the values are amounts of one kind, so that "at least" applies to them.
    bool IsOfAmounts() const;
    /// For amounts, in ascending order, how many sessions have at least each of the most frequent ones, and
    /// of those in `asked`; sizes are as they are sold. For texts, the most frequent ones.
    std::vector<Step> Steps(const std::vector<std::string>& asked) const;
    /// How many sessions meet a condition on this value.
    int Meeting(const Condition& condition) const;
    /// The values, the most frequent first, at most `max`.
    std::vector<Step> Values(std::size_t max) const;

private:
    struct Value {
        std::string text;  // as the first session reported it
        int count = 0;
    };

    std::vector<Step> AtLeast(const std::vector<std::string>& asked) const;

    int id;
    SoldAs soldAs;
    int reported = 0, unreported = 0;
    std::map<std::string, Value> values;  // by the text that is compared
};

}  // namespace kel::server
