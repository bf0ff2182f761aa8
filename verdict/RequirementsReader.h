#pragma once

#include <string_view>
#include <vector>

#include "verdict/Requirements.h"

namespace kel {

/// Reads the JSON form of requirements, which Requirements::Read describes. With `errors`, a line or a page
/// that is wrong is left empty, and what is wrong is added to them. Throws RequirementsError for the rest.
Requirements ReadRequirements(std::string_view text, std::vector<RequirementsError>* errors);

}  // namespace kel
