#pragma once

#include <string>
#include <string_view>

namespace kel {

/// The text without the blanks (of ASCII) at its ends.
std::string_view Trim(std::string_view text);

/// The text in lower case, letter by letter, in every script. Bytes that are not UTF-8 stay.
std::string Lower(std::string_view text);

/// The text with &, <, > and both quotes escaped: for XML and HTML, elements and attributes.
std::string Escape(std::string_view text);

/// The text, or when it is longer than `max` bytes, its beginning with "…". Characters of UTF-8 stay whole.
std::string Shortened(std::string_view text, std::size_t max);

/// Whether the text is a referrer's name: 1 to 64 ASCII letters, digits, hyphens and underscores.
bool IsReferrer(std::string_view text);

}  // namespace kel
