#pragma once

#include "check/text/Page.h"
#include "verdict/Verdict.h"

namespace kel::check {

/// The verdict line by line: what is not met first, with what can be done about it; what is met is hidden.
/// Texts of the service are shown without control characters, and long ones are truncated.
Page VerdictPage(const Verdict& verdict);

}  // namespace kel::check
