#include "program/text/Characters.h"

#include <algorithm>
#include <iterator>

#include "verdict/text/Text.h"
#include "verdict/text/Utf8.h"

namespace kel::program {

namespace {

constexpr char32_t Replacement = 0xFFFD;

struct Range {
    char32_t first, last;
};

constexpr Range Combining[] = {{0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x064B, 0x065F},
                               {0x0E31, 0x0E31}, {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF},
                               {0x200B, 0x200D}, {0x20D0, 0x20F0}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};
constexpr Range Wide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},  {0xAC00, 0xD7A3},
                          {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},  {0xFFE0, 0xFFE6},
                          {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

template <std::size_t Count>
bool IsIn(const Range (&ranges)[Count], char32_t c)
{
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [c](const Range& range) { return c >= range.first && c <= range.last; });
}

int ColumnsOf(char32_t c)
{
    return IsIn(Combining, c) ? 0 : IsIn(Wide, c) ? 2 : 1;
}

/// Takes the next character, or a byte that is not part of one.
char32_t Take(std::string_view& text)
{
    if (const auto c = TakeCodePoint(text))
        return *c;
    text.remove_prefix(1);
    return Replacement;
}

}  // namespace

int Columns(std::string_view text)
{
    int columns = 0;
    while (!text.empty())
        columns += ColumnsOf(Take(text));
    return columns;
}

std::string_view TakeLine(std::string_view& text, int columns)
{
    const std::string_view whole = text;
    std::size_t end = 0, blank = std::string_view::npos;
    std::string_view rest = whole;
    for (int used = 0; !rest.empty();) {
        if (rest.front() == ' ' && end > 0)
            blank = end;
        used += ColumnsOf(Take(rest));
        if (used > columns && end > 0)
            break;
        end = whole.size() - rest.size();
    }
    if (end < whole.size() && blank != std::string_view::npos)
        end = blank;
    text = whole.substr(end);
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return Trim(whole.substr(0, end));
}

}  // namespace kel::program
