#include "verdict/text/SessionNumber.h"

#include <algorithm>

#include "verdict/text/Text.h"

namespace kel {

namespace {

constexpr std::size_t Digits = 8;

bool IsHexadecimal(std::string_view text)
{
    return text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

std::string Upper(std::string_view digits)
{
    std::string upper(digits);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char c) { return c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c; });
    return upper;
}

}  // namespace

std::string SessionNumber(std::string_view session)
{
    const std::string_view bare = session.substr(session.starts_with('{') ? 1 : 0);
    const bool isGuid =
        bare.substr(std::min(Digits, bare.size())).starts_with('-') && IsHexadecimal(bare.substr(0, Digits));
    return isGuid ? Upper(bare.substr(0, Digits)) : std::string(session);
}

std::vector<std::string> SessionBeginnings(std::string_view number)
{
    if (number.size() != Digits || !IsHexadecimal(number))
        return {};
    const std::string upper = Upper(number), lower = Lower(number);
    return {upper, lower, "{" + upper, "{" + lower};
}

}  // namespace kel
