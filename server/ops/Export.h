#pragma once

#include <filesystem>

#include "server/store/Database.h"

namespace kel::server {

/// Writes each referrer's newest requirements to the folder's <referrer>.json, byte for byte: what Import
/// takes. Makes the folder; other files in it stay. Throws std::runtime_error when one cannot be written.
void Export(const std::filesystem::path& folder, Database& database);

}  // namespace kel::server
