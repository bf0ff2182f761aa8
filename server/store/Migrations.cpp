#include "server/store/Migrations.h"

#include <stdexcept>
#include <string>

namespace kel::server {

namespace {

constexpr std::int64_t ApplicationId = 0x4B454C53;  // "KELS": tells the file from other programs' databases

std::int64_t VersionOf(SqliteDatabase& database)
{
    const auto newest = static_cast<std::int64_t>(Migrations.size());
    const std::int64_t version = database.Number("PRAGMA user_version");
    const bool empty = version == 0 && database.Number("SELECT count(*) FROM sqlite_schema") == 0;
    if (!empty && database.Number("PRAGMA application_id") != ApplicationId)
        throw std::runtime_error("the database is another program's");
    if (version > newest) {
        throw std::runtime_error("the database has version " + std::to_string(version) +
                                 ", which is newer than " + std::to_string(newest) +
                                 ", the newest that this program knows");
    }
    return version;
}

}  // namespace

int Migrate(SqliteDatabase& database)
{
    for (;;) {
        SqliteTransaction transaction(database);
        const std::int64_t version = VersionOf(database);
        if (version == static_cast<std::int64_t>(Migrations.size()))
            return static_cast<int>(version);
        database.Execute(Migrations[static_cast<std::size_t>(version)]);
        database.Execute("PRAGMA application_id = " + std::to_string(ApplicationId) +
                         "; PRAGMA user_version = " + std::to_string(version + 1));
        transaction.Commit();
    }
}

void RequireCurrent(SqliteDatabase& database)
{
    if (VersionOf(database) < static_cast<std::int64_t>(Migrations.size()))
        throw std::runtime_error("the database is older than this program; run the command migrate");
}

}  // namespace kel::server
