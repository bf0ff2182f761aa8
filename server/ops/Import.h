#pragma once

#include <filesystem>

#include "server/store/Database.h"

namespace kel::server {

/// What an import refuses: all that CheckRequirements finds, or only what cannot be read.
enum class ImportCheck { Full, Readable };

/// Publishes the requirements of a folder's <referrer>.json files, each as its referrer's newest version
/// unless it is that already. When one of them is invalid, publishes none and throws std::runtime_error with
/// its name.
void Import(const std::filesystem::path& folder, Database& database, ImportCheck check = ImportCheck::Full);

/// Logs for each file that Import would read whether it is valid, and all that is wrong with it or doubtful;
/// publishes nothing and needs no database. Throws std::runtime_error when one is not valid.
void CheckImport(const std::filesystem::path& folder);

}  // namespace kel::server
