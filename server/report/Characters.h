#pragma once

#include <cstddef>
#include <string>

namespace kel::server {

/// Replaces each control character, surrogate, U+FFFE and U+FFFF of an XML document with U+FFFD, whether it
/// is literal or a numeric reference: firmware texts contain them, and XML does not allow them. Everything
/// else is left unchanged, even if it is not UTF-8. Returns the number of replaced characters.
std::size_t ReplaceForbiddenCharacters(std::string& xml);

}  // namespace kel::server
