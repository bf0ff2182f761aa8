#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kel::server {

/// A part of a body.
struct ByteRange {
    std::size_t first = 0, length = 0;
};

/// The part that a header Range asks for, such as "bytes=0-99" or "bytes=-100"; its length is 0 when the body
/// has none of these bytes. Nothing when the whole body has to be sent: for several parts, another unit, and
/// a text that is not a range.
std::optional<ByteRange> ParseRange(std::string_view header, std::size_t size);

}  // namespace kel::server
