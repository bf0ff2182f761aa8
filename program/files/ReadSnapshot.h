#pragma once

#include <string>
#include <string_view>

#include "verdict/files/Snapshot.h"

namespace kel::program {

/// Reads the text of a support file, of a report of the control, or of the service's export, whose newest
/// report counts. UTF-8, or UTF-16 as PowerShell writes it.
/// @throws UserError, in one line, for any other text
Snapshot ReadSnapshot(std::string_view bytes);

/// The same for a file.
/// @param path UTF-8
Snapshot ReadSnapshotFile(const std::string& path);

}  // namespace kel::program
