#pragma once

#include <string>
#include <string_view>

namespace kel::server {

/// What is wrong with the text of requirements, and in which of its lines; empty when nothing is.
std::string ValidationError(const std::string& text);

/// 1-based line on which the n-th requirement starts; 0 if not found.
int LineOfRequirement(std::string_view text, int number);

}  // namespace kel::server
