#pragma once

#include <string>
#include <string_view>

namespace kel {

/// The text with a replacement character for each control character, each character that changes the
/// direction of writing, and each byte that is not UTF-8: a value or a file cannot control the console.
std::string Printable(std::string_view text);

}  // namespace kel
