#include "server/ops/Backup.h"

#include <filesystem>
#include <stdexcept>

#include "server/base/Log.h"
#include "server/ops/NewFile.h"
#include "server/store/PostgresConnection.h"
#include "server/store/SqliteConnection.h"

namespace kel::server {

void Backup(const DatabaseSettings& settings, const std::string& file)
{
    if (PostgresConnection::IsAddress(settings.location))
        throw std::runtime_error("a PostgreSQL database is copied with pg_dump");
    if (std::filesystem::exists(file))
        throw std::runtime_error(file + " already exists");
    SqliteConnection connection(settings.location, SqliteConnection::Mode::Existing,
                                SqliteConnection::Durability::Normal);
    const int version = connection.Version();
    const NewFile unfinished(file);
    connection.Query("VACUUM INTO $1", {unfinished.path});
    Sync(unfinished.path);
    // Unlike renaming, a link does not replace a file that was created meanwhile.
    std::filesystem::create_hard_link(unfinished.path, file);
    SyncFolderOf(file);
    Log(Level::Info, "copied", {{"file", file}, {"version", std::to_string(version)}});
}

}  // namespace kel::server
