#pragma once

#include <string>
#include <string_view>

#include "verdict/files/Snapshot.h"

namespace kel::server {

/// Reads a file of a machine's values: kel's support file, a report of the control, or this service's export.
/// Any bytes may be passed. Throws FileError, in one line, for any other text.
Snapshot ReadReportFile(std::string_view bytes);

/// The values as a report, as the control uploads it.
std::string WriteReport(const Snapshot& snapshot);

}  // namespace kel::server
