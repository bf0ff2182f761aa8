#include "verdict/text/Printable.h"

#include <algorithm>
#include <iterator>

#include "verdict/text/Utf8.h"

namespace kel {

namespace {

constexpr struct {
    char32_t first, last;
} Controls[] = {{0, 0x1F},        {0x7F, 0x9F},     {0x061C, 0x061C}, {0x200E, 0x200F},
                {0x2028, 0x202E}, {0x2066, 0x2069}, {0xFEFF, 0xFEFF}};

bool IsPrintable(char32_t c)
{
    return std::none_of(std::begin(Controls), std::end(Controls),
                        [c](const auto& range) { return c >= range.first && c <= range.last; });
}

}  // namespace

std::string Printable(std::string_view text)
{
    return ReplaceCharacters(text, &IsPrintable);
}

}  // namespace kel
