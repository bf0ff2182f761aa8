#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kel::program {

/// Areas of the machine, each with names of its values.
using NamesByArea = std::vector<std::pair<std::string, std::vector<std::string>>>;

/// The names of the values for a person who has to agree before they are read, both in the order of the
/// catalogue. Values that are always empty, and those that a page sets, are left out.
NamesByArea GroupByArea(const std::vector<int>& values);

}  // namespace kel::program
