#pragma once

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "server/report/Report.h"
#include "verdict/Requirements.h"

namespace kel::server {

/// What sessions report for one value: for the first device, or for any one of several.
class ValueSample {
public:
    /// Sessions whose value is, or is at least, that of the label.
    struct Step {
        std::string label;
        int count = 0;
        bool isAsked = false;  // a requirement needs it
    };

    static constexpr std::size_t MaxSteps = 10;

    /// @param ofAny a session has what any one of its devices has, instead of the first
    explicit ValueSample(int id, bool ofAny = false);

    /// Counts the value of a session's report.
    void Add(const Report& report);

    int Id() const { return id; }
    bool IsOfAny() const { return ofAny; }
    int Reported() const { return reported; }
    int Unreported() const { return unreported; }
    /// Whether the values are amounts of one kind, so that "at least" applies to them.
    bool IsOfAmounts() const;
    /// For amounts, in ascending order, how many sessions have at least each of the most frequent ones, and
    /// of those in `asked`; sizes are as they are sold. For texts, the most frequent ones.
    std::vector<Step> Steps(const std::vector<std::string>& asked) const;
    /// How many sessions meet a condition on this value, with the first or with any device.
    int Meeting(const Condition& condition, bool any) const;
    /// The values, the most frequent first, at most `max`. Of a session with several each counts, once.
    std::vector<Step> Values(std::size_t max) const;

private:
    using Devices = std::vector<std::string>;  // the texts that are compared, the first device's first

    const std::string& Normalized(const std::string& value);
    std::vector<Step> AtLeast(const std::vector<std::string>& asked) const;

    int id;
    bool ofAny;
    SoldAs soldAs;
    int reported = 0, unreported = 0;
    std::map<Devices, int> sessions;           // how many have these
    std::map<std::string, std::string> texts;  // as the first session reported what is compared
    std::unordered_map<std::string, std::string> normalized;
};

}  // namespace kel::server
