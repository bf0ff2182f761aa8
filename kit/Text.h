// The kit's tables, and texts of other programs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kel::kit {

/// The lines of a text, without empty ones.
std::vector<std::string> LinesOf(std::string_view text);

/// The rows of a table with tabs between its fields, without comments ("#") and the head.
/// @param path UTF-8
/// @throws UserError when the file cannot be read or a row has another number of fields
std::vector<std::vector<std::string>> ReadTable(const std::string& path, std::size_t fieldCount);

/// The fields between separators; empty ones stay.
std::vector<std::string> SplitFields(std::string_view line, char separator);

/// The number in capital hexadecimal digits, at least as many as asked for.
std::string Hex(std::uint64_t number, int digits = 1);

}  // namespace kel::kit
