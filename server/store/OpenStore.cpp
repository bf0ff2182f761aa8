#include "server/store/OpenStore.h"

#include "server/store/Migrations.h"
#include "server/store/SqlStore.h"
#include "server/store/SqliteConnection.h"

namespace kel::server {

namespace {

std::unique_ptr<SqlConnection> Connect(const StoreSettings& settings, SqliteConnection::Mode mode)
{
    return std::make_unique<SqliteConnection>(settings.database, mode,
                                              settings.durability == "full"
                                                  ? SqliteConnection::Durability::Full
                                                  : SqliteConnection::Durability::Normal);
}

}  // namespace

std::unique_ptr<Store> OpenStore(const StoreSettings& settings)
{
    RequireCurrent(*Connect(settings, SqliteConnection::Mode::Existing));
    const auto open = [settings] { return Connect(settings, SqliteConnection::Mode::Existing); };
    // One writer: they would wait for each other in any case, and here they do so without polling.
    return std::make_unique<SqlStore>(std::make_shared<SqlPool>(open, settings.connections),
                                      std::make_shared<SqlPool>(open, 1));
}

std::unique_ptr<SqlConnection> OpenForMigration(const StoreSettings& settings)
{
    return Connect(settings, SqliteConnection::Mode::Create);
}

}  // namespace kel::server
