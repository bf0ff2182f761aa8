#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "run/RequestInterval.h"
#include "run/store/GroupID.h"

namespace kel {

/// The groups that the analysis service wants for a referrer.
class WantedGroups {
public:
    bool Contains(const GroupID& group) const { return std::ranges::binary_search(numbers, group.Number()); }

    /// Whether the groups have to be fetched for this referrer: they were fetched for none or another one, or
    /// the service did not answer and the time for another attempt has come.
    /// @param now seconds since 1970
    bool IsDue(const std::wstring& referrer, std::int64_t now) const
    {
        return fetchedFor != referrer || (!isAnswered && attempt.IsDue(now));
    }

    /// Whether the service has sent the groups, which may be none.
    bool AreAnswered() const { return isAnswered; }

    /// Takes the answer: group ids separated by "|" or ",".
    /// @param answered whether it is the service's, and not an error
    void Assign(const std::wstring& answer, const std::wstring& referrer, bool answered);

    /// Records a request for the groups, whatever comes of it.
    /// @param now seconds since 1970
    void MarkSent(std::int64_t now) { attempt.MarkSent(now); }

    /// Makes another attempt due at once, if the service has not answered yet.
    void Reset() { attempt.Reset(); }

    /// Takes groups that were not fetched for any referrer.
    void Assign(std::vector<unsigned> groups);

private:
    std::vector<unsigned> numbers;           // in order; a hostile answer has millions
    std::optional<std::wstring> fetchedFor;  // the referrer, which may be empty
    bool isAnswered = false;
    RequestInterval attempt;
};

}  // namespace kel
