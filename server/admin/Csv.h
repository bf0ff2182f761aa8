#pragma once

#include <string>
#include <vector>

namespace kel::server {

/// A record of a CSV file (RFC 4180). A cell that a spreadsheet would take for a formula gets an apostrophe
/// in front, which makes it a text.
std::string CsvRecord(const std::vector<std::string>& cells);

}  // namespace kel::server
