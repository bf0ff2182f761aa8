#include "verdict/Tally.h"

#include <algorithm>
#include <stdexcept>

namespace kel {

void Tally::Count(const Verdict& verdict)
{
    if (All() == 0) {
        for (const VerdictLine& line : verdict.lines)
            lines.push_back({{}, line.label, line.needed, line.recommended});
    }
    const bool isSame = std::equal(lines.begin(), lines.end(), verdict.lines.begin(), verdict.lines.end(),
                                   [](const LineTally& tally, const VerdictLine& line) {
                                       return tally.label == line.label && tally.needed == line.needed &&
                                              tally.recommended == line.recommended;
                                   });
    if (!isSame)
        throw std::invalid_argument("a verdict by other requirements");
    Add(verdict.total);
    for (std::size_t i = 0; i < lines.size(); ++i)
        lines[i].Add(verdict.lines[i].result);
}

}  // namespace kel
