#pragma once

#include <string>
#include <vector>

namespace kel {

/// A record of a CSV file (RFC 4180). An apostrophe makes a text of what a spreadsheet would compute: at the
/// beginning of a cell, and inside of one wherever a reader that separates by semicolons, tabs or line ends
/// would begin another cell.
std::string CsvRecord(const std::vector<std::string>& cells);

}  // namespace kel
