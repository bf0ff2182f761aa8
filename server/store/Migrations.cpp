#include "server/store/Migrations.h"

#include <fmt/format.h>
#include <stdexcept>
#include <string>

namespace kel::server {

namespace {

int NewestVersion(const SqlConnection& connection)
{
    return static_cast<int>(connection.Migrations().size());
}

int RequireKnownVersion(SqlConnection& connection)
{
    const int version = connection.Version();
    const int newest = NewestVersion(connection);
    if (version > newest) {
        throw std::runtime_error(fmt::format(
            "the database has version {}, which is newer than {}, the newest that this program knows",
            version, newest));
    }
    return version;
}

}  // namespace

int Migrate(SqlConnection& connection)
{
    for (;;) {
        SqlTransaction transaction(connection, &SqlConnection::BeginMigration);
        const int version = RequireKnownVersion(connection);
        if (version == NewestVersion(connection))
            return version;
        connection.Execute(connection.Migrations()[static_cast<std::size_t>(version)]);
        connection.SetVersion(version + 1);
        transaction.Commit();
    }
}

void RequireCurrent(SqlConnection& connection)
{
    const int version = RequireKnownVersion(connection);
    if (version == 0)
        throw std::runtime_error("the database is empty; create its tables with the command migrate");
    if (version < NewestVersion(connection))
        throw std::runtime_error("the database is older than this program; run the command migrate");
}

}  // namespace kel::server
