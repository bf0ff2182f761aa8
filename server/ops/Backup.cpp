#include "server/ops/Backup.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
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

/// An empty file of a name that nobody else has, beside another, until the end.
class Unfinished {
public:
    explicit Unfinished(const std::string& beside) : path(beside + ".XXXXXX")
    {
        const int file = mkstemp(path.data());
        if (file < 0)
            throw std::runtime_error(path + " cannot be made");
        close(file);
    }
    ~Unfinished() { unlink(path.c_str()); }
    Unfinished(const Unfinished&) = delete;
    Unfinished& operator=(const Unfinished&) = delete;

    std::string path;
};

}  // namespace

void Backup(const StoreSettings& settings, const std::string& file)
{
    if (PostgresConnection::IsAddress(settings.database))
        throw std::runtime_error("a PostgreSQL database is copied with pg_dump");
    if (std::filesystem::exists(file))
        throw std::runtime_error(file + " is there already");
    SqliteConnection connection(settings.database, SqliteConnection::Mode::Existing,
                                SqliteConnection::Durability::Normal);
    const int version = connection.Version();
    const Unfinished unfinished(file);
    connection.Query("VACUUM INTO $1", {unfinished.path});
    Sync(unfinished.path);
    // Unlike a change of the name, a link replaces no file that somebody has made meanwhile.
    std::filesystem::create_hard_link(unfinished.path, file);
    const std::string folder = std::filesystem::path(file).parent_path();
    Sync(folder.empty() ? "." : folder);
    Log(Level::Info, "copied", {{"file", file}, {"version", std::to_string(version)}});
}

}  // namespace kel::server
