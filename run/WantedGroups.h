#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "run/store/GroupID.h"

namespace kel {

/// The groups that the analysis service wants for a referrer.
class WantedGroups {
public:
    bool Contains(const GroupID& group) const { return std::ranges::binary_search(numbers, group.Number()); }

    /// Whether the groups were fetched for this referrer.
    bool IsFetchedFor(const std::wstring& referrer) const { return fetched && fetchedFor == referrer; }

    /// Takes the service's answer: group ids separated by "|" or ",".
    void Assign(const std::wstring& answer, const std::wstring& referrer);

    /// Takes groups that were not fetched for any referrer.
    void Assign(std::vector<unsigned> groups);

private:
    std::vector<unsigned> numbers;  // in order; a hostile answer has millions
    bool fetched = false;
    std::wstring fetchedFor;
};

}  // namespace kel
