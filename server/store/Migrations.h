#pragma once

#include "server/store/SqlConnection.h"

namespace kel::server {

/// Brings the database to the newest version, and returns it. Each step is a transaction. Waits for another
/// process that does the same. Throws std::runtime_error for a newer database, and for another program's.
int Migrate(SqlConnection& connection);

/// Throws std::runtime_error unless the database has the version that this program knows.
void RequireCurrent(SqlConnection& connection);

}  // namespace kel::server
