#include "server/ops/Restore.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "server/base/Log.h"
#include "server/ops/Accounts.h"
#include "server/ops/NewFile.h"
#include "server/store/Audit.h"
#include "server/store/Migrations.h"
#include "server/store/PostgresConnection.h"
#include "server/store/SqliteConnection.h"

namespace kel::server {

namespace {

/// Locks one of a database's files, so that no other process opens the database. SQLite itself locks them
/// while a database is open.
class Lock {
public:
    explicit Lock(const std::string& path) : file(open(path.c_str(), O_RDWR | O_CLOEXEC))
    {
        struct flock all {};
        all.l_type = F_WRLCK;
        all.l_whence = SEEK_SET;
        if (file < 0 && errno != ENOENT)
            throw std::runtime_error(path + " cannot be opened");
        if (file >= 0 && fcntl(file, F_SETLK, &all) != 0) {
            close(file);
            throw std::runtime_error("the database is in use: stop the service, and all commands");
        }
    }
    ~Lock()
    {
        if (file >= 0)
            close(file);
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    int file;
};

/// Gives a file to the owner of the database, or of its folder if there is no database: root may restore, but
/// the service has to write.
void GiveToOwner(const std::string& path, const std::string& database)
{
    struct stat owner {};
    const std::string folder = std::filesystem::absolute(database).parent_path();
    if (stat(database.c_str(), &owner) != 0 && stat(folder.c_str(), &owner) != 0)
        throw std::runtime_error(folder + " does not exist");
    if (geteuid() == 0 && chown(path.c_str(), owner.st_uid, owner.st_gid) != 0)
        throw std::runtime_error(path + " cannot be given to its owner");
}

/// Checks a copy, and brings it to this program's version. Returns the version that it had.
int Prepare(const std::string& copy, const std::string& file)
{
    SqliteConnection connection(copy, SqliteConnection::Mode::Existing, SqliteConnection::Durability::Full);
    const int version = connection.Version();
    if (version == 0)
        throw std::runtime_error("it is empty");
    if (const std::string fault = connection.Query("PRAGMA integrity_check(1)").at(0).Text(); fault != "ok")
        throw std::runtime_error("it is damaged: " + fault);
    Migrate(connection);
    SqlTransaction transaction(connection);
    Audit::AddEntry(connection, CommandLine, "restored", std::filesystem::path(file).filename());
    transaction.Commit();
    // Afterwards everything is in the one file.
    if (connection.Query("PRAGMA journal_mode = DELETE").at(0).Text() != "delete")
        throw std::runtime_error("its write-ahead log cannot be emptied");
    return version;
}

}  // namespace

void Restore(const DatabaseSettings& settings, const std::string& file)
{
    const std::string& database = settings.location;
    if (PostgresConnection::IsAddress(database))
        throw std::runtime_error("a PostgreSQL database is restored with pg_restore");
    if (!std::filesystem::is_regular_file(file))
        throw std::runtime_error(file + " is not a file");
    std::error_code missing;
    if (std::filesystem::equivalent(file, database, missing))
        throw std::runtime_error(file + " is the database itself");
    for (const char* end : {"-wal", "-journal"}) {
        if (std::filesystem::exists(file + end))
            throw std::runtime_error(file + end + " is there: the file is a database in use, not a copy");
    }
    const Lock lock(database), sharedLock(database + "-shm");
    const NewFile unfinished(database);
    std::filesystem::copy_file(file, unfinished.path, std::filesystem::copy_options::overwrite_existing);
    int version = 0;
    try {
        version = Prepare(unfinished.path, file);
    } catch (const std::exception& error) {
        throw std::runtime_error(fmt::format("{} cannot be restored: {}", file, error.what()));
    }
    GiveToOwner(unfinished.path, database);
    Sync(unfinished.path);
    // Removes the old database's log, too, which would be applied to the copy; the database itself goes
    // first.
    for (const char* end : {"", "-wal", "-shm", "-journal"})
        std::filesystem::remove(database + end);
    std::filesystem::rename(unfinished.path, database);
    SyncFolderOf(database);
    Log(Level::Info, "restored", {{"file", file}, {"version", std::to_string(version)}});
}

}  // namespace kel::server
