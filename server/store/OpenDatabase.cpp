#include "server/store/OpenDatabase.h"

#include "server/base/Fault.h"
#include "server/store/Migrations.h"
#include "server/store/PostgresConnection.h"
#include "server/store/SqliteConnection.h"

namespace kel::server {

namespace {

std::unique_ptr<SqliteConnection> ConnectSqlite(const DatabaseSettings& settings, SqliteConnection::Mode mode)
{
    return std::make_unique<SqliteConnection>(settings.location, mode,
                                              settings.durability == "full"
                                                  ? SqliteConnection::Durability::Full
                                                  : SqliteConnection::Durability::Normal);
}

/// Opens an existing file. On a full disk there may be no room for the index of the write-ahead log, so the
/// reserve is released for it.
std::unique_ptr<SqliteConnection> ConnectToFile(const DatabaseSettings& settings)
{
    try {
        return ConnectSqlite(settings, SqliteConnection::Mode::Existing);
    } catch (const NoRoom&) {
        if (!Room(settings.location, settings.bounds).ReleaseReserve())
            throw;
    }
    return ConnectSqlite(settings, SqliteConnection::Mode::Existing);
}

}  // namespace

std::unique_ptr<Database> OpenDatabase(const DatabaseSettings& settings)
{
    const bool isServer = PostgresConnection::IsAddress(settings.location);
    const auto file = FileIdentity::Of(settings.location);
    const SqlPool::Open open = [settings, isServer, file]() -> std::unique_ptr<SqlConnection> {
        if (isServer)
            return std::make_unique<PostgresConnection>(settings.location,
                                                        PostgresConnection::Patience::Request);
        // The write-ahead log beside a replaced file belongs to the old one; opening would apply it to the
        // new one.
        if (FileIdentity::Of(settings.location) != file)
            throw Fault(Unavailable, "database: the file was removed or replaced; put it back, or restart");
        return ConnectToFile(settings);
    };
    const std::size_t quickCount = (settings.connections + 2) / 4;  // a quarter; none if there is only one
    auto readers = std::make_shared<SqlPool>(open, settings.connections - quickCount);
    auto quick = quickCount > 0 ? std::make_shared<SqlPool>(open, quickCount) : readers;
    auto writers = readers;
    if (!isServer) {
        // One writer: several would wait for each other anyway; in the pool they wait without polling.
        writers = std::make_shared<SqlPool>(open, 1);
        SqlPool::Join({quick, readers, writers});
    }
    // The connection stays open, so that a restore sees that the database is in use.
    RequireCurrent(*writers->Borrow());
    return std::make_unique<Database>(std::move(quick), std::move(readers), std::move(writers),
                                      isServer ? std::string() : settings.location, settings.bounds);
}

std::unique_ptr<SqlConnection> OpenForMigration(const DatabaseSettings& settings)
{
    if (PostgresConnection::IsAddress(settings.location))
        return std::make_unique<PostgresConnection>(settings.location,
                                                    PostgresConnection::Patience::Migration);
    return ConnectSqlite(settings, SqliteConnection::Mode::Create);
}

}  // namespace kel::server
