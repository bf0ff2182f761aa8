#pragma once

#include <cstdint>
#include <string>

namespace kel {

/// A number in upper-case hexadecimal, padded with zeros to at least this many digits.
std::wstring Hexadecimal(std::uint64_t number, int digits);

}  // namespace kel
