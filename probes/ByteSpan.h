// Numbers and texts in bytes that come from outside. Reading past the end gives nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace kel {

/// A device's answer.
using Bytes = std::span<const std::byte>;

/// A little-endian number of the given size in bytes; nullopt when the bytes end before it does.
std::optional<std::uint64_t> ReadLittleEndian(Bytes bytes, std::size_t offset, std::size_t size);

/// The same, big-endian.
std::optional<std::uint64_t> ReadBigEndian(Bytes bytes, std::size_t offset, std::size_t size);

/// The printable ASCII from an offset to the first other byte or the end, without blanks around it.
std::wstring ReadAscii(Bytes bytes, std::size_t offset);

}  // namespace kel
