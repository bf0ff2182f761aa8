#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kel {

/// Removes the first code point from the text and returns it. When the text does not begin with one (empty,
/// truncated, overlong, a surrogate, or past U+10FFFF), returns nothing and leaves the text unchanged.
std::optional<char32_t> TakeCodePoint(std::string_view& text);

/// Whether the text is UTF-8 without a NUL.
bool IsPlainText(std::string_view text);

/// Whether an XML 1.0 document may contain this character.
bool IsXmlCharacter(char32_t c);

/// Whether the text is UTF-8 of characters that an XML document may contain.
bool IsXmlText(std::string_view text);

/// The text with U+FFFD for each character that is not kept, and for each byte that is not UTF-8.
std::string ReplaceCharacters(std::string_view text, bool (*isKept)(char32_t));

/// The text with U+FFFD for what an XML document may not contain.
std::string XmlText(std::string_view text);

/// UTF-8 of a text in UTF-16, given as bytes, the low one first. Halves of a pair become U+FFFD.
std::string FromUtf16(std::string_view bytes);

/// Appends the code point's bytes.
void AppendCodePoint(std::string& text, char32_t codePoint);

}  // namespace kel
