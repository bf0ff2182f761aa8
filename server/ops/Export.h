#pragma once

#include <filesystem>

#include "server/store/Database.h"

namespace kel::server {

/// Writes each referrer's newest requirements, byte for byte, to the folder's <referrer>.json, from which
/// Import reads. Creates the folder; other files in it stay. Throws std::runtime_error when one cannot be
/// written.
void Export(const std::filesystem::path& folder, Database& database);

}  // namespace kel::server
