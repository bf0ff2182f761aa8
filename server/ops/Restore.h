#pragma once

#include <string>

#include "server/store/OpenDatabase.h"

namespace kel::server {

/// Replaces an SQLite database with a copy that `Backup` made, which is first checked and brought to this
/// program's version. The database's contents are then gone, including its write-ahead log. Throws
/// std::runtime_error, and changes nothing, while another process has the database open, for a file that is
/// damaged or not this program's, and for a PostgreSQL server, which has its own program for that.
void Restore(const DatabaseSettings& settings, const std::string& file);

}  // namespace kel::server
