#include "server/verdict/Verdict.h"

#include <algorithm>

#include "server/base/Text.h"

namespace kel::server {

namespace {

Result TotalOf(const std::vector<VerdictLine>& lines)
{
    const auto has = [&](Result result) {
        return std::any_of(lines.begin(), lines.end(),
                           [=](const VerdictLine& line) { return line.result == result; });
    };
    if (has(Result::Fail))
        return Result::Fail;
    return has(Result::Unknown) || lines.empty() ? Result::Unknown : Result::Pass;
}

}  // namespace

Verdict Judge(const Requirements& requirements, const Report& report)
{
    Verdict verdict;
    verdict.title = requirements.title;
    for (const Requirement& line : requirements.lines) {
        std::string needed(NameOf(line.comparison));
        needed.append(" ").append(line.needed);
        verdict.lines.push_back({line.group, line.label, std::string(Trim(needed)), report.Text(line.group),
                                 Compare(line.comparison, report.Value(line.group), line.needed),
                                 line.advice});
    }
    verdict.total = TotalOf(verdict.lines);
    return verdict;
}

}  // namespace kel::server
