#pragma once

#include "server/store/SqlConnection.h"

namespace kel::server {

/// Brings the database to the newest version, each step by itself entirely or not at all; the version. Waits
/// for another process that does the same. Throws std::runtime_error for a newer one, and for a database that
/// is another program's.
int Migrate(SqlConnection& connection);

/// Throws std::runtime_error unless the database has the version that this program knows.
void RequireCurrent(SqlConnection& connection);

}  // namespace kel::server
