#pragma once

#include <string>

#include "kit/Tools.h"

namespace kel::kit {

/// Runs "SELECT property FROM …" against WMI, perhaps with "sum", "count" or "max" before it.
Answer AskWmi(const std::string& expression);

}  // namespace kel::kit
