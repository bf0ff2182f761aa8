#include "server/base/Text.h"

#include <clocale>
#include <cwctype>
#include <memory>
#include <stdexcept>
#include <type_traits>

#include "server/base/Utf8.h"

namespace kel::server {

namespace {

constexpr std::string_view Blanks = " \t\n\r\f\v";
constexpr std::size_t LongestReferrer = 64;

using Locale = std::unique_ptr<std::remove_pointer_t<locale_t>, decltype(&freelocale)>;

/// The system's own tables of letters, whatever the environment's language.
locale_t Letters()
{
    static const Locale utf8(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr), freelocale);
    if (!utf8)
        throw std::runtime_error("the system has no locale C.UTF-8");
    return utf8.get();
}

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
    while (!text.empty()) {
        if (const auto codePoint = TakeCodePoint(text)) {
            AppendCodePoint(lower,
                            static_cast<char32_t>(towlower_l(static_cast<wint_t>(*codePoint), Letters())));
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

std::string Shortened(std::string_view text, std::size_t longest)
{
    if (text.size() <= longest)
        return std::string(text);
    while (longest > 0 && (static_cast<unsigned char>(text[longest]) & 0xC0) == 0x80)
        --longest;
    return std::string(text.substr(0, longest)) + "…";
}

bool IsReferrer(std::string_view text)
{
    return !text.empty() && text.size() <= LongestReferrer &&
           text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-") ==
               std::string_view::npos;
}

}  // namespace kel::server
