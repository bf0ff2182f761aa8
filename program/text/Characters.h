// What texts of any source need before a console shows them.
#pragma once

#include <string>
#include <string_view>

namespace kel::program {

/// The text with a replacement character for each control character, each character that changes the
/// direction of writing, and each byte that is not UTF-8: a value or a file cannot control the console.
std::string Printable(std::string_view text);

/// The text with a replacement character for what XML does not allow, as the service keeps reports.
std::string XmlText(std::string_view text);

/// The columns that a printable text takes on a console: two for each wide character, none for a combining
/// one.
int Columns(std::string_view text);

/// Takes from the text what fits into a line of this many columns, at a blank where there is one; at least
/// one character. The blanks between two lines are dropped.
std::string_view TakeLine(std::string_view& text, int columns);

}  // namespace kel::program
