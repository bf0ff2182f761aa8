#pragma once

#include <string>
#include <string_view>

namespace kel::server {

/// "Ram: total physical memory"; empty for an id that the catalogue lacks.
std::string NameOfValue(std::string_view id);

}  // namespace kel::server
