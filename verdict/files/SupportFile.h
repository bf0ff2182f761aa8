// The own form of a snapshot: JSON, which `kel report` writes, and `kel facts --json`.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "verdict/files/Snapshot.h"

namespace kel {

/// The member that every such file has first, and the number of its form.
inline constexpr const char* SupportFileMark = "kel";

/// UTF-8, a member of the snapshot each: time, version, windows, host, product, verdict and log are left out
/// where they are empty. A value has id, index, area, name, value, and reason where that is known; a missing
/// one has no value.
std::string WriteSupportFile(const Snapshot& snapshot);

/// @throws FileError when the content is not such a file
Snapshot ReadSupportFile(const nlohmann::json& content);

/// The values of a list as such a file and the service's export have it; ids may be texts.
/// @throws FileError for another content
std::vector<Fact> ReadFacts(const nlohmann::json& values);

}  // namespace kel
