#pragma once

#include <memory>
#include <string>

#include "server/store/Database.h"
#include "server/store/SqlConnection.h"

namespace kel::server {

/// Where the database is, and how it is opened.
struct DatabaseSettings {
    std::string location = "kel.db";  // an SQLite file, or postgresql://user@host/name
    std::string durability = "normal";
    std::size_t connections = 4;  // at the same time; an SQLite file has one more, for writing
    Bounds bounds;
};

/// Opens a database, which has to have the current version; throws std::runtime_error otherwise.
std::unique_ptr<Database> OpenDatabase(const DatabaseSettings& settings);

/// One connection for a migration; creates the database if it is a missing file.
std::unique_ptr<SqlConnection> OpenForMigration(const DatabaseSettings& settings);

}  // namespace kel::server
