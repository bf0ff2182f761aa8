#pragma once

#include <string>

#include "server/store/OpenDatabase.h"

namespace kel::server {

/// Copies an SQLite database as it is at this moment into a new file, while others read and write it. The
/// file gets its name when it is complete and on the disk, and only its owner may read it. Throws
/// std::runtime_error when the file exists already, and for a PostgreSQL server, which has its own program
/// for that.
void Backup(const DatabaseSettings& settings, const std::string& file);

}  // namespace kel::server
