// How texts are compared with what a table names.
#pragma once

#include <string_view>
#include <vector>

namespace kel {

/// Whether two texts are equal but for the case of their letters, as the system's own names are.
bool IsSameText(std::wstring_view one, std::wstring_view other);

/// Whether a text is the pattern's, without regard to case; a pattern that ends in "*" takes every text that
/// begins with the rest of it.
bool MatchesPattern(std::wstring_view text, std::wstring_view pattern);

/// The parts of a list that bars separate, such as "one|two"; none of an empty text.
std::vector<std::wstring_view> SplitList(std::wstring_view list);

}  // namespace kel
