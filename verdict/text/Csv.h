#pragma once

#include <string>
#include <vector>

namespace kel {

/// A record of a CSV file (RFC 4180). An apostrophe turns what a spreadsheet would compute into a text: at
/// the beginning of a cell, and inside a cell wherever a reader that separates by semicolons, tabs or line
/// ends would begin another one.
std::string CsvRecord(const std::vector<std::string>& cells);

}  // namespace kel
