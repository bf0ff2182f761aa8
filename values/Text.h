// Operations on wide text for the value classes, the store and the requests.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The platform's wide-text-to-integer rule: leading blanks, sign and digits; 0 when there are none,
/// the nearest limit when the number is too large.
int ToInteger(const std::wstring& text);

/// The same for unsigned numbers.
unsigned ToUnsigned(const std::wstring& text);

/// A copy in upper case.
std::wstring ToUpper(std::wstring text);

/// A copy in lower case.
std::wstring ToLower(std::wstring text);

/// A copy without white space at the end and at the start.
std::wstring Trim(const std::wstring& text);

/// A copy without white space around it and with single blanks within.
std::wstring CollapseBlanks(const std::wstring& text);

/// Replaces every occurrence; the search goes on after the text just inserted.
void ReplaceAll(std::wstring& text, std::wstring_view what, std::wstring_view with);

/// A copy with "&", "<" and ">" written as XML entities; quotes stay as they are.
std::wstring EscapeMarkup(std::wstring text);

/// The parts between separators, one more than there are separators; an empty text has one empty part.
std::vector<std::wstring_view> Split(std::wstring_view text, wchar_t separator);

/// Removes every occurrence of any of the characters.
void RemoveCharacters(std::wstring& text, std::wstring_view characters);

}  // namespace kel
