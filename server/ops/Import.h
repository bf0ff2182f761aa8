#pragma once

#include <filesystem>

#include "server/store/Database.h"

namespace kel::server {

/// Publishes the requirements of a folder's <referrer>.json files, each as its referrer's newest version
/// unless it is that already. When one of them is invalid, publishes none and throws std::runtime_error with
/// its name.
void Import(const std::filesystem::path& folder, Database& database);

}  // namespace kel::server
