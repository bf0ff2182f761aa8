// What texts of any source need before a console shows them.
#pragma once

#include <string_view>

#include "verdict/text/Printable.h"

namespace kel::program {

/// The columns that a printable text takes on a console: two for each wide character, none for a combining
/// one.
int Columns(std::string_view text);

/// Takes from the text what fits into a line of this many columns, at a blank where there is one; at least
/// one character. The blanks between two lines are dropped.
std::string_view TakeLine(std::string_view& text, int columns);

}  // namespace kel::program
