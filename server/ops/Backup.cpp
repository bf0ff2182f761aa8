#include "server/ops/Backup.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "server/base/Log.h"
#include "server/store/PostgresConnection.h"
#include "server/store/SqliteConnection.h"

namespace kel::server {

namespace {

void Sync(const std::string& path)
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool done = file >= 0 && fsync(file) == 0;
    if (file >= 0)
        close(file);
    if (!done)
        throw std::runtime_error(path + " cannot be written to the disk");
}

}  // namespace

void Backup(const StoreSettings& settings, const std::string& file)
{
    if (PostgresConnection::IsAddress(settings.database))
        throw std::runtime_error("a PostgreSQL database is copied with pg_dump");
    if (std::filesystem::exists(file))
        throw std::runtime_error(file + " is there already");
    const std::string unfinished = file + ".new";
    std::filesystem::remove(unfinished);
    SqliteConnection connection(settings.database, SqliteConnection::Mode::Existing,
                                SqliteConnection::Durability::Normal);
    const int version = connection.Version();
    umask(S_IRWXG | S_IRWXO);
    try {
        connection.Query("VACUUM INTO $1", {unfinished});
        Sync(unfinished);
        std::filesystem::rename(unfinished, file);
    } catch (const std::exception&) {
        std::error_code ignored;
        std::filesystem::remove(unfinished, ignored);
        throw;
    }
    Log(Level::Info, "copied", {{"file", file}, {"version", std::to_string(version)}});
}

}  // namespace kel::server
