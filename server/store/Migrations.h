#pragma once

#include <span>

#include "server/store/SqlConnection.h"

namespace kel::server {

/// The statements of migrations/sqlite/*.sql and migrations/postgres/*.sql in order, which the build embeds.
/// The first one leads from nothing to version 1; both databases have the same versions.
extern const std::span<const char*const> SqliteMigrations, PostgresMigrations;

/// Brings the database to the newest version, and returns it. Each step is a transaction. Waits for another
/// process that does the same. Throws std::runtime_error for a newer database, and for another program's.
int Migrate(SqlConnection& connection);

/// Throws std::runtime_error unless the database has the version that this program knows.
void RequireCurrent(SqlConnection& connection);

}  // namespace kel::server
