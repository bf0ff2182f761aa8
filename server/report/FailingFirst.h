#pragma once

#include <string>
#include <vector>

#include "verdict/Verdict.h"

namespace kel::server {

/// The lines in the order in which support reads them: those that fail, those that are unknown, those that
/// pass; recommendations after the others of the same result. The verdict has to outlive them.
std::vector<const VerdictLine*> FailingFirst(const Verdict& verdict);

/// "2 of 5 requirements fail, 1 is unknown; 1 of 2 recommendations fails."
std::string CountText(const Verdict& verdict);

}  // namespace kel::server
