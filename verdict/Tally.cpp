#include "verdict/Tally.h"

namespace kel {

Tally::Tally(const Requirements& requirements)
{
    for (const Requirement& line : requirements.lines)
        lines.push_back({{}, line.label.Default(), line.Needed(), line.recommended});
}

void Tally::Count(const VerdictResults& verdict)
{
    Add(verdict.total);
    for (std::size_t i = 0; i < lines.size(); ++i)
        lines[i].Add(verdict.lines.at(i));
}

}  // namespace kel
