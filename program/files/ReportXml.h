#pragma once

#include <string_view>
#include <vector>

#include "verdict/files/Snapshot.h"

namespace kel::program {

/// Reads the values of a report of the control, through XmlLite. Characters that XML does not allow become
/// replacement characters, as the service keeps them; of two values of an id the later one counts, as there.
/// @param xml UTF-8
/// @throws FileError when the text is not such a report, and when the system lacks XmlLite
std::vector<Fact> ReadReportXml(std::string_view xml);

}  // namespace kel::program
