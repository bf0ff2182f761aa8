#include "server/admin/LineCounts.h"

namespace kel::server {

void Count(Totals& totals, std::string_view result)
{
    ++(result == "pass" ? totals.pass : result == "fail" ? totals.fail : totals.unknown);
}

void LineCounts::Add(const Verdict& verdict)
{
    Count(totals, NameOf(verdict.total));
    if (lines.empty()) {
        for (const VerdictLine& line : verdict.lines)
            lines.push_back({line.label, line.needed, {}});
    }
    for (std::size_t i = 0; i < verdict.lines.size(); ++i)
        Count(lines.at(i).results, NameOf(verdict.lines[i].result));
}

}  // namespace kel::server
