#include "run/WantedGroups.h"

#include <algorithm>
#include <utility>

namespace kel {

void WantedGroups::Assign(const std::wstring& answer, const std::wstring& referrer, bool answered)
{
    constexpr const wchar_t* Separators = L"|,";
    numbers.clear();
    for (std::size_t start = answer.find_first_not_of(Separators); start != std::wstring::npos;) {
        const std::size_t end = std::min(answer.find_first_of(Separators, start), answer.size());
        numbers.push_back(GroupID(answer.substr(start, end - start)).Number());
        start = answer.find_first_not_of(Separators, end);
    }
    std::ranges::sort(numbers);
    fetchedFor = referrer;
    isAnswered = answered;
    attempt.Reset();
}

void WantedGroups::Assign(std::vector<unsigned> groups)
{
    numbers = std::move(groups);
    std::ranges::sort(numbers);
    fetchedFor.reset();
}

}  // namespace kel
