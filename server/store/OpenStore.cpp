#include "server/store/OpenStore.h"

#include "server/store/Migrations.h"
#include "server/store/PostgresConnection.h"
#include "server/store/SqlStore.h"
#include "server/store/SqliteConnection.h"

namespace kel::server {

namespace {

std::unique_ptr<SqlConnection> ConnectSqlite(const StoreSettings& settings, SqliteConnection::Mode mode)
{
    return std::make_unique<SqliteConnection>(settings.database, mode,
                                              settings.durability == "full"
                                                  ? SqliteConnection::Durability::Full
                                                  : SqliteConnection::Durability::Normal);
}

}  // namespace

std::unique_ptr<Store> OpenStore(const StoreSettings& settings)
{
    const bool isServer = PostgresConnection::IsAddress(settings.database);
    const SqlPool::Open open = [settings, isServer]() -> std::unique_ptr<SqlConnection> {
        if (isServer)
            return std::make_unique<PostgresConnection>(settings.database,
                                                        PostgresConnection::Patience::Request);
        return ConnectSqlite(settings, SqliteConnection::Mode::Existing);
    };
    RequireCurrent(*open());
    const std::size_t quickCount = (settings.connections + 2) / 4;  // a quarter; none of a single connection
    auto readers = std::make_shared<SqlPool>(open, settings.connections - quickCount);
    auto quick = quickCount > 0 ? std::make_shared<SqlPool>(open, quickCount) : readers;
    auto writers = readers;
    if (!isServer) {
        // One writer: they would wait for each other in any case, and here they do so without polling.
        writers = std::make_shared<SqlPool>(open, 1);
        SqlPool::Join({quick, readers, writers});
    }
    return std::make_unique<SqlStore>(std::move(quick), std::move(readers), std::move(writers));
}

std::unique_ptr<SqlConnection> OpenForMigration(const StoreSettings& settings)
{
    if (PostgresConnection::IsAddress(settings.database))
        return std::make_unique<PostgresConnection>(settings.database,
                                                    PostgresConnection::Patience::Migration);
    return ConnectSqlite(settings, SqliteConnection::Mode::Create);
}

}  // namespace kel::server
