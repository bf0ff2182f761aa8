// What the build puts into the program.
#pragma once

#include <span>

namespace kel::server {

/// The three numbers that this program was built as; its package has the same.
extern const char* const Version;

/// The text of admin.css.
extern const char* const AdminStyle;

/// The statements of migrations/sqlite/*.sql and migrations/postgres/*.sql in their order. The first one
/// leads from nothing to version 1; both databases have the same versions.
extern const std::span<const char*const> SqliteMigrations, PostgresMigrations;

}  // namespace kel::server
