// UTF-8, used only on the wire.
#pragma once

#include <string>
#include <string_view>

namespace kel {

/// @throws std::length_error for a text of more than 2^31 - 1 characters, std::runtime_error when the system
/// cannot convert it
std::string ToUtf8(std::wstring_view text);

/// Bytes that are not UTF-8 become replacement characters.
/// @throws as above
std::wstring FromUtf8(std::string_view bytes);

}  // namespace kel
