#pragma once

#include <string_view>

namespace kel {

/// Whether the text is a UUID: hexadecimal digits of either case in groups of 8, 4, 4, 4 and 12, with hyphens
/// between them.
bool IsUuid(std::string_view text);

}  // namespace kel
