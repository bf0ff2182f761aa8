#pragma once

#include <cstddef>
#include <string>

namespace kel::server {

/// Replaces each control character, surrogate, U+FFFE and U+FFFF of an XML document by U+FFFD, whether it
/// stands there itself or as a numeric reference: texts of firmware contain them, and XML does not allow
/// them. Everything else stays as it is, even if it is not UTF-8. Returns the number of replaced characters.
std::size_t ReplaceForbiddenCharacters(std::string& xml);

}  // namespace kel::server
