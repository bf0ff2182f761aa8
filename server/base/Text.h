#pragma once

#include <string>
#include <string_view>

namespace kel::server {

/// The text without the blanks (of ASCII) at its ends.
std::string_view Trim(std::string_view text);

/// The text in lower case, letter by letter, of every script. Bytes that are no UTF-8 stay.
std::string Lower(std::string_view text);

/// The text with &, <, > and both quotes escaped: for XML and HTML, elements and attributes.
std::string Escape(std::string_view text);

/// The text, or its beginning with "…" when it is longer than so many bytes. What is UTF-8 stays it.
std::string Shortened(std::string_view text, std::size_t longest);

/// Whether the text is a referrer's name: 1 to 64 ASCII letters, digits, hyphens and underscores.
bool IsReferrer(std::string_view text);

}  // namespace kel::server
