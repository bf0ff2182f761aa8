#pragma once

#include <string>
#include <vector>

#include "program/text/Output.h"
#include "verdict/Requirements.h"
#include "verdict/Verdict.h"
#include "verdict/files/Snapshot.h"

namespace kel::program {

/// Reads a file of requirements.
/// @throws UserError with its fault and the line
Requirements ReadRequirements(const std::string& path);

/// Writes a verdict line by line, with what can be done about the lines that do not pass, and the total.
void WriteVerdict(Output& output, const Verdict& verdict);

/// Writes for each line that does not pass which of its values are empty, and why.
void WriteReasons(Output& output, const Requirements& requirements, const Verdict& verdict,
                  const Snapshot& snapshot);

}  // namespace kel::program
