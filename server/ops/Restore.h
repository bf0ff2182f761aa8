#pragma once

#include <string>

#include "server/store/OpenDatabase.h"

namespace kel::server {

/// Puts a copy that `Backup` made in the place of an SQLite database, brought to this program's version and
/// checked before. What the database had is gone then, its write-ahead log with it. Throws
/// std::runtime_error, and changes nothing, while another process has the database open, for a file that is
/// damaged or not this program's, and for a PostgreSQL server, which has its own program for that.
void Restore(const DatabaseSettings& settings, const std::string& file);

}  // namespace kel::server
