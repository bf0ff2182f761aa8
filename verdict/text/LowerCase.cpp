#include "verdict/text/LowerCase.h"

#include <algorithm>
#include <iterator>

#include "verdict/text/LowerCaseTable.h"

namespace kel {

char32_t LowerCase(char32_t c)
{
    const auto* range =
        std::lower_bound(std::begin(LowerCaseRanges), std::end(LowerCaseRanges), c,
                         [](const LowerCaseRange& row, char32_t letter) { return row.last < letter; });
    if (range == std::end(LowerCaseRanges) || c < range->first ||
        (c - range->first) % static_cast<char32_t>(range->stride) != 0)
        return c;
    return c + static_cast<char32_t>(range->distance);
}

}  // namespace kel
