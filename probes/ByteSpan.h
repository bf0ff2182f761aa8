// Numbers and texts in bytes that come from outside; whatever lies beyond the bytes is absent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace kel {

/// What a device answered.
using Bytes = std::span<const std::byte>;

/// A number of so many bytes, the lowest first; nothing when it is not all there.
std::optional<std::uint64_t> ReadLittleEndian(Bytes bytes, std::size_t offset, std::size_t size);

/// The same with the highest first.
std::optional<std::uint64_t> ReadBigEndian(Bytes bytes, std::size_t offset, std::size_t size);

/// Printable ASCII from an offset to the first byte that is none, or to the end, without blanks around it.
std::wstring ReadAscii(Bytes bytes, std::size_t offset);

}  // namespace kel
