// Comparisons of texts with the names in a table.
#pragma once

#include <string_view>
#include <vector>

namespace kel {

/// Whether two texts are equal except for case, by the system's rule for names.
bool IsSameText(std::wstring_view one, std::wstring_view other);

/// Whether a text matches a pattern, ignoring case; a pattern that ends in "*" matches every text that begins
/// with the rest of it.
bool MatchesPattern(std::wstring_view text, std::wstring_view pattern);

/// The parts of a list that bars separate, such as "one|two"; none of an empty text.
std::vector<std::wstring_view> SplitList(std::wstring_view list);

}  // namespace kel
