#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "verdict/files/Snapshot.h"

namespace kel {

/// Bytes. A support file with a long log has some megabytes, an answer of the service's export at most four.
inline constexpr std::size_t MaxMachineFile = std::size_t{32} << 20;

/// Reads the values of a report of the control, which is XML: each system has its own reader.
/// @param xml UTF-8, from its first "<" on
/// @throws FileError when the text is not such a report
using ReportReader = std::vector<Fact>(std::string_view xml);

/// Reads the text of a support file, of a report of the control, or of the service's export, whose newest
/// report counts. UTF-8, or UTF-16 as PowerShell writes it.
/// @throws FileError, in one line, for any other text
Snapshot ReadMachineFile(std::string_view bytes, ReportReader* readReport);

}  // namespace kel
