#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace kel::program {

/// A message of the extension: one JSON object of texts.
using Message = std::map<std::string, std::string, std::less<>>;

/// Reads a message. Nothing for any other JSON or text: another value than a text, an object or list within
/// the object, a repeated member, more than 8 members, or bytes that are not UTF-8.
std::optional<Message> ParseMessage(std::string_view text);

}  // namespace kel::program
