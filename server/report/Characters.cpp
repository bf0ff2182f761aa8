#include "server/report/Characters.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "verdict/text/Utf8.h"

namespace kel::server {

namespace {

constexpr char32_t MaxCharacter = 0x10FFFF;
constexpr std::size_t MaxReference = 32;  // bytes, with leading zeros

/// The number in a reference such as "&#12;" or "&#xC;", and its length, if the text begins with one.
struct Reference {
    char32_t number;
    std::size_t length;
};

std::optional<Reference> ParseReference(std::string_view text)
{
    const std::size_t end = text.substr(0, MaxReference).find(';');
    if (!text.starts_with("&#") || end == std::string_view::npos)
        return std::nullopt;
    const bool isHexadecimal = text.starts_with("&#x");
    const std::string_view digits = text.substr(0, end).substr(isHexadecimal ? 3 : 2);
    std::uint32_t number = 0;
    const auto [stop, error] = std::from_chars(digits.begin(), digits.end(), number, isHexadecimal ? 16 : 10);
    if (error != std::errc() || stop != digits.end())
        return std::nullopt;
    return Reference{number, end + 1};
}

/// The length of the forbidden character at the beginning of the text; 0 if it begins with another one.
std::size_t ForbiddenLength(std::string_view text)
{
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    if (text.front() == '&') {
        const auto reference = ParseReference(text);
        // A number beyond the last character is not replaced: the reader refuses it.
        const bool isForbidden =
            reference && reference->number <= MaxCharacter && !IsXmlCharacter(reference->number);
        return isForbidden ? reference->length : 0;
    }
    if (byte(0) < 0x20)
        return IsXmlCharacter(byte(0)) ? 0 : 1;
    // A surrogate is not UTF-8, but a program that encodes UTF-16 unit by unit writes it this way.
    const bool isSurrogate =
        text.size() >= 3 && byte(0) == 0xED && byte(1) >= 0xA0 && byte(1) <= 0xBF && (byte(2) & 0xC0) == 0x80;
    return isSurrogate || text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF") ? 3 : 0;
}

}  // namespace

std::size_t ReplaceForbiddenCharacters(std::string& xml)
{
    constexpr char32_t Replacement = 0xFFFD;
    std::string replaced;
    std::size_t count = 0;
    std::size_t copied = 0;
    for (std::size_t at = 0; at < xml.size(); ++at) {
        // Most of a report is plain ASCII.
        if (xml[at] >= ' ' && xml[at] != '&')
            continue;
        const std::size_t length = ForbiddenLength(std::string_view(xml).substr(at));
        if (length == 0)
            continue;
        replaced.append(xml, copied, at - copied);
        AppendCodePoint(replaced, Replacement);
        copied = at + length;
        at = copied - 1;
        ++count;
    }
    if (count > 0)
        xml = replaced.append(xml, copied);
    return count;
}

}  // namespace kel::server
