#pragma once

namespace kel {

/// Sets the level of the log. The first time that it writes anything, a line of the process comes first: its
/// date, its program, and this module's version and path, whatever the level is.
void SetLogLevel(int level);

}  // namespace kel
