#include "server/report/PlainGroups.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace kel::server {

namespace {

constexpr std::size_t UsualGroupBytes = 80;

bool Take(std::string_view& rest, std::string_view expected)
{
    if (!rest.starts_with(expected))
        return false;
    rest.remove_prefix(expected.size());
    return true;
}

/// The text before the end mark, which is taken, too; nothing when it is missing.
std::optional<std::string_view> TakeUntil(std::string_view& rest, std::string_view end)
{
    const std::size_t length = rest.find(end.front());
    if (length == rest.npos || !rest.substr(length).starts_with(end))
        return std::nullopt;
    const std::string_view taken = rest.substr(0, length);
    rest.remove_prefix(length + end.size());
    return taken;
}

bool IsNumber(std::string_view text)
{
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// Nothing for a number that is too large.
std::optional<long> ReadNumber(std::string_view text)
{
    long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return IsNumber(text) && error == std::errc() ? std::optional(number) : std::nullopt;
}

/// The character of a reference with a name, with which the text begins, and which is taken; 0 for any other.
char TakeReference(std::string_view& text)
{
    constexpr std::pair<std::string_view, char> Known[] = {
        {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
    for (const auto& [reference, character] : Known) {
        if (Take(text, reference))
            return character;
    }
    return 0;
}

bool HasOnlyNamedReferences(std::string_view value)
{
    for (std::size_t at = value.find('&'); at != value.npos; at = value.find('&')) {
        value.remove_prefix(at);
        if (TakeReference(value) == 0)
            return false;
    }
    return true;
}

}  // namespace

std::string GroupText::Value() const
{
    if (!hasReferences)
        return std::string(value);
    std::string text;
    std::string_view rest = value;
    for (std::size_t at = rest.find('&'); at != rest.npos; at = rest.find('&')) {
        text += rest.substr(0, at);
        rest.remove_prefix(at);
        text += TakeReference(rest);
    }
    return text.append(rest);
}

std::optional<std::vector<GroupText>> FindPlainGroups(std::string_view xml)
{
    // The parser replaces carriage returns.
    if (xml.find('\r') != xml.npos || !Take(xml, "<groups>"))
        return std::nullopt;
    std::vector<GroupText> groups;
    groups.reserve(xml.size() / UsualGroupBytes + 1);
    while (Take(xml, "<group index=\"")) {
        const auto index = TakeUntil(xml, "\" id=\"");
        const auto id = index ? TakeUntil(xml, "\"><value>") : std::nullopt;
        const auto value = id ? TakeUntil(xml, "</value></group>") : std::nullopt;
        const auto number = value && IsNumber(*id) ? ReadNumber(*index) : std::nullopt;
        if (!number || !HasOnlyNamedReferences(*value))
            return std::nullopt;
        groups.push_back({*id, *number, *value, value->find('&') != value->npos});
    }
    if (!Take(xml, "</groups>") || xml.find_first_not_of(' ') != xml.npos)
        return std::nullopt;
    return groups;
}

}  // namespace kel::server
