#include "verdict/text/Text.h"

#include "verdict/text/LowerCase.h"
#include "verdict/text/Utf8.h"

namespace kel {

namespace {

constexpr std::string_view Blanks = " \t\n\r\f\v";
constexpr std::size_t MaxReferrer = 64;  // bytes

}  // namespace

std::string_view Trim(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(Blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

std::string Lower(std::string_view text)
{
    std::string lower;
    lower.reserve(text.size());
    while (!text.empty()) {
        if (text.front() > 0) {  // ASCII, as nearly all values are
            const char c = text.front();
            lower += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
            text.remove_prefix(1);
        } else if (const auto codePoint = TakeCodePoint(text)) {
            AppendCodePoint(lower, LowerCase(*codePoint));
        } else {
            lower += text.front();
            text.remove_prefix(1);
        }
    }
    return lower;
}

std::string Escape(std::string_view text)
{
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&#x27;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string Shortened(std::string_view text, std::size_t max)
{
    if (text.size() <= max)
        return std::string(text);
    while (max > 0 && (static_cast<unsigned char>(text[max]) & 0xC0) == 0x80)
        --max;
    return std::string(text.substr(0, max)) + "…";
}

bool IsReferrer(std::string_view text)
{
    return !text.empty() && text.size() <= MaxReferrer &&
           text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-") ==
               std::string_view::npos;
}

}  // namespace kel
