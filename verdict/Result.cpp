#include "verdict/Result.h"

namespace kel {

std::string_view ToString(Result result)
{
    return result == Result::Pass ? "pass" : result == Result::Fail ? "fail" : "unknown";
}

std::optional<Result> ParseResult(std::string_view text)
{
    for (const Result result : {Result::Pass, Result::Fail, Result::Unknown}) {
        if (text == ToString(result))
            return result;
    }
    return std::nullopt;
}

}  // namespace kel
