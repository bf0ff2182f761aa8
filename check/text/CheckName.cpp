#include "check/text/CheckName.h"

#include <algorithm>

#include "verdict/text/Text.h"

namespace kel::check {

namespace {

constexpr std::string_view NamePrefix = "check.", NameSuffix = ".exe", LinkPrefix = "kel-check:";
constexpr std::string_view UuidForm = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

bool IsUuid(std::string_view text)
{
    constexpr std::string_view Digits = "0123456789abcdefABCDEF";
    return std::ranges::equal(text, UuidForm, [&](char c, char form) {
        return form == '-' ? c == '-' : Digits.find(c) != Digits.npos;
    });
}

std::optional<CheckName> Parse(std::string_view text, char separator)
{
    const std::size_t place = text.find(separator);
    if (place == text.npos)
        return std::nullopt;
    const std::string_view product = text.substr(0, place), session = text.substr(place + 1);
    if (!IsReferrer(product) || !IsUuid(session))
        return std::nullopt;
    return CheckName{std::string(product), std::string(session)};
}

/// The name of the file that was downloaded first: without "(1)" at the end.
std::string_view WithoutCopyNumber(std::string_view name)
{
    const std::size_t open = name.rfind('(');
    if (open == name.npos || !name.ends_with(')'))
        return name;
    const std::string_view number = name.substr(open + 1, name.size() - open - 2);
    if (number.empty() || number.find_first_not_of("0123456789") != number.npos)
        return name;
    return name.substr(0, open - (open > 0 && name[open - 1] == ' ' ? 1 : 0));
}

}  // namespace

std::optional<CheckName> ParseFileName(std::string_view name)
{
    const std::string lower = Lower(name);
    if (!lower.starts_with(NamePrefix) || !lower.ends_with(NameSuffix))
        return std::nullopt;
    // ASCII at both ends: its lower-case form is as long.
    name.remove_prefix(NamePrefix.size());
    name.remove_suffix(std::min(NameSuffix.size(), name.size()));
    return Parse(WithoutCopyNumber(name), '.');
}

std::optional<CheckName> ParseLink(std::string_view link)
{
    if (!link.starts_with(LinkPrefix))
        return std::nullopt;
    return Parse(link.substr(LinkPrefix.size()), '/');
}

}  // namespace kel::check
