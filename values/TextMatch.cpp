#include "values/TextMatch.h"

#include <windows.h>

#include "values/Text.h"

namespace kel {

bool IsSameText(std::wstring_view one, std::wstring_view other)
{
    return one.size() == other.size() &&
           (one.empty() || CompareStringOrdinal(one.data(), static_cast<int>(one.size()), other.data(),
                                                static_cast<int>(other.size()), TRUE) == CSTR_EQUAL);
}

bool MatchesPattern(std::wstring_view text, std::wstring_view pattern)
{
    if (!pattern.ends_with(L'*'))
        return IsSameText(text, pattern);
    pattern.remove_suffix(1);
    return IsSameText(text.substr(0, pattern.size()), pattern);
}

std::vector<std::wstring_view> SplitList(std::wstring_view list)
{
    return list.empty() ? std::vector<std::wstring_view>() : Split(list, L'|');
}

}  // namespace kel
