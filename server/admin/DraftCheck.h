#pragma once

#include <string>
#include <string_view>

namespace kel::server {

/// What is wrong with the text of requirements, and in which of its lines; empty when nothing is.
std::string ValidationError(const std::string& text);

/// The line, from 1 on, where so many'th requirement begins, from 1 on, too; 0 when it is not found.
int LineOfRequirement(std::string_view text, int number);

}  // namespace kel::server
