#include "server/protocol/ByteRange.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "verdict/text/Text.h"

namespace kel::server {

namespace {

/// A number of digits alone; the largest one for those that are larger still.
std::optional<std::size_t> ParsePosition(std::string_view text)
{
    if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    std::size_t number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() ? number : std::numeric_limits<std::size_t>::max();
}

}  // namespace

std::optional<ByteRange> ParseRange(std::string_view header, std::size_t size)
{
    constexpr std::string_view Unit = "bytes=";
    if (Lower(header.substr(0, Unit.size())) != Unit)
        return std::nullopt;
    const std::string_view range = Trim(header.substr(Unit.size()));
    const std::size_t hyphen = range.find('-');
    if (hyphen == std::string_view::npos)
        return std::nullopt;
    const std::string_view end = range.substr(hyphen + 1);
    const auto first = ParsePosition(range.substr(0, hyphen)), last = ParsePosition(end);
    if (hyphen == 0) {  // the last bytes
        if (!last)
            return std::nullopt;
        const std::size_t length = std::min(*last, size);
        return ByteRange{size - length, length};
    }
    if (!first || (!end.empty() && (!last || *last < *first)))
        return std::nullopt;
    if (*first >= size)
        return ByteRange{};
    return ByteRange{*first, std::min(last.value_or(size - 1), size - 1) - *first + 1};
}

}  // namespace kel::server
