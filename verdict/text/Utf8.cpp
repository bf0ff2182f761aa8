#include "verdict/text/Utf8.h"

namespace kel {

namespace {

struct Form {
    unsigned char mask, lead;  // a first byte has this form when (byte & mask) == lead
    std::size_t length;
    char32_t min;  // smaller ones have a shorter form
};

constexpr char32_t MaxCharacter = 0x10FFFF;
constexpr char32_t Replacement = 0xFFFD;

constexpr Form Forms[] = {
    {0x80, 0x00, 1, 0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

}  // namespace

std::optional<char32_t> TakeCodePoint(std::string_view& text)
{
    if (text.empty())
        return std::nullopt;
    const auto first = static_cast<unsigned char>(text.front());
    for (const Form& form : Forms) {
        if ((first & form.mask) != form.lead)
            continue;
        if (text.size() < form.length)
            return std::nullopt;
        char32_t codePoint = first & static_cast<unsigned char>(~form.mask);
        for (std::size_t i = 1; i < form.length; ++i) {
            const auto next = static_cast<unsigned char>(text[i]);
            if ((next & 0xC0) != 0x80)
                return std::nullopt;
            codePoint = codePoint << 6 | (next & 0x3F);
        }
        if (codePoint < form.min || codePoint > MaxCharacter || (codePoint >= 0xD800 && codePoint <= 0xDFFF))
            return std::nullopt;
        text.remove_prefix(form.length);
        return codePoint;
    }
    return std::nullopt;
}

bool IsPlainText(std::string_view text)
{
    while (!text.empty()) {
        if (text.front() > 0)
            text.remove_prefix(1);
        else if (text.front() == 0 || !TakeCodePoint(text))
            return false;
    }
    return true;
}

bool IsXmlCharacter(char32_t c)
{
    return c >= 0x20 ? (c < 0xD800 || c > 0xDFFF) && c != 0xFFFE && c != 0xFFFF && c <= MaxCharacter
                     : c == '\t' || c == '\n' || c == '\r';
}

bool IsXmlText(std::string_view text)
{
    while (!text.empty()) {
        const auto character = TakeCodePoint(text);
        if (!character || !IsXmlCharacter(*character))
            return false;
    }
    return true;
}

std::string ReplaceCharacters(std::string_view text, bool (*isKept)(char32_t))
{
    std::string kept;
    kept.reserve(text.size());
    while (!text.empty()) {
        const auto found = TakeCodePoint(text);
        if (!found)
            text.remove_prefix(1);
        AppendCodePoint(kept, found && isKept(*found) ? *found : Replacement);
    }
    return kept;
}

std::string XmlText(std::string_view text)
{
    return ReplaceCharacters(text, &IsXmlCharacter);
}

std::string FromUtf16(std::string_view bytes)
{
    std::string text;
    const auto unitAt = [bytes](std::size_t at) {
        const auto byte = [bytes](std::size_t place) -> char32_t {
            return static_cast<unsigned char>(bytes[place]);
        };
        return at + 1 < bytes.size() ? byte(at) | byte(at + 1) << 8 : 0;
    };
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const char32_t unit = unitAt(at), next = unitAt(at + 2);
        if (unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
            AppendCodePoint(text, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            at += 2;
        } else {
            AppendCodePoint(text, unit >= 0xD800 && unit < 0xE000 ? Replacement : unit);
        }
    }
    return text;
}

void AppendCodePoint(std::string& text, char32_t codePoint)
{
    std::size_t length = 1;
    while (length < 4 && codePoint >= Forms[length].min)
        ++length;
    const Form& form = Forms[length - 1];
    text += static_cast<char>(form.lead | codePoint >> 6 * (length - 1));
    for (std::size_t i = length - 1; i-- > 0;)
        text += static_cast<char>(0x80 | (codePoint >> 6 * i & 0x3F));
}

}  // namespace kel
