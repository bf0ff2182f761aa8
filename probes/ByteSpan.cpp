#include "probes/ByteSpan.h"

#include "values/Text.h"

namespace kel {

namespace {

bool IsInside(Bytes bytes, std::size_t offset, std::size_t size)
{
    return offset <= bytes.size() && size <= bytes.size() - offset;
}

}  // namespace

std::optional<std::uint64_t> ReadLittleEndian(Bytes bytes, std::size_t offset, std::size_t size)
{
    if (!IsInside(bytes, offset, size))
        return std::nullopt;
    std::uint64_t number = 0;
    for (std::size_t place = size; place > 0; --place)
        number = number << 8 | std::to_integer<std::uint64_t>(bytes[offset + place - 1]);
    return number;
}

std::optional<std::uint64_t> ReadBigEndian(Bytes bytes, std::size_t offset, std::size_t size)
{
    if (!IsInside(bytes, offset, size))
        return std::nullopt;
    std::uint64_t number = 0;
    for (const std::byte byte : bytes.subspan(offset, size))
        number = number << 8 | std::to_integer<std::uint64_t>(byte);
    return number;
}

std::wstring ReadAscii(Bytes bytes, std::size_t offset)
{
    std::wstring text;
    for (; offset < bytes.size(); ++offset) {
        const auto character = std::to_integer<wchar_t>(bytes[offset]);
        if (character < L' ' || character > L'~')
            break;
        text += character;
    }
    return Trim(text);
}

}  // namespace kel
