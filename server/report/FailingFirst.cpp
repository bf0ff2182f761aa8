#include "server/report/FailingFirst.h"

#include <fmt/format.h>
#include <algorithm>
#include <utility>

#include "verdict/Tally.h"

namespace kel::server {

namespace {

int Rank(Result result)
{
    return result == Result::Fail ? 0 : result == Result::Unknown ? 1 : 2;
}

std::string Sentence(const Counts& counts, const char* kind)
{
    const int all = counts.pass + counts.fail + counts.unknown;
    const std::string unknown = counts.unknown == 0 ? std::string()
                                                    : fmt::format(", {} {} unknown", counts.unknown,
                                                                  counts.unknown == 1 ? "is" : "are");
    return fmt::format("{} of {} {} {}{}", counts.fail, all, kind, counts.fail == 1 ? "fails" : "fail",
                       unknown);
}

}  // namespace

std::vector<const VerdictLine*> FailingFirst(const Verdict& verdict)
{
    std::vector<const VerdictLine*> lines;
    for (const VerdictLine& line : verdict.lines)
        lines.push_back(&line);
    std::stable_sort(lines.begin(), lines.end(), [](const VerdictLine* left, const VerdictLine* right) {
        return std::pair(Rank(left->result), left->recommended) <
               std::pair(Rank(right->result), right->recommended);
    });
    return lines;
}

std::string CountText(const Verdict& verdict)
{
    Counts required, recommended;
    for (const VerdictLine& line : verdict.lines)
        (line.recommended ? recommended : required).Add(line.result);
    const bool hasRecommendations = recommended.pass + recommended.fail + recommended.unknown > 0;
    return Sentence(required, "requirements") +
           (hasRecommendations ? "; " + Sentence(recommended, "recommendations") : "") + ".";
}

}  // namespace kel::server
