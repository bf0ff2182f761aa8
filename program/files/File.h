#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kel::program {

/// The bytes of a file.
/// @param path UTF-8
/// @throws UserError when it cannot be read or has more bytes
std::string ReadFile(const std::string& path, std::size_t maxBytes);

/// Writes a file, over one that is there.
/// @throws UserError when that fails
void WriteFile(const std::string& path, std::string_view bytes);

}  // namespace kel::program
