#include "run/WantedGroups.h"

#include <algorithm>

namespace kel {

void WantedGroups::Assign(const std::wstring& answer, const std::wstring& referrer)
{
    constexpr const wchar_t* Separators = L"|,";
    groups.clear();
    for (std::size_t start = answer.find_first_not_of(Separators); start != std::wstring::npos;) {
        const std::size_t end = std::min(answer.find_first_of(Separators, start), answer.size());
        groups.emplace_back(answer.substr(start, end - start));
        start = answer.find_first_not_of(Separators, end);
    }
    std::ranges::stable_sort(groups, {}, &GroupID::Number);
    const auto repeated = std::ranges::unique(groups);
    groups.erase(repeated.begin(), repeated.end());
    fetched = true;
    fetchedFor = referrer;
}

}  // namespace kel
