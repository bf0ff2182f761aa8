#pragma once

#include <mutex>
#include <string>

#include "server/store/SqliteDatabase.h"
#include "server/store/SqliteStatement.h"
#include "server/store/Store.h"

namespace kel::server {

/// The store in one SQLite file. Its operations take turns: each takes some tens of microseconds.
class SqliteStore : public Store {
public:
    /// Opens a file that has the current version; throws std::runtime_error when there is none.
    explicit SqliteStore(const std::string& path);

    void Keep(const NewReport& report) override;
    std::optional<StoredReport> NewestReport(const std::string& session) override;
    std::optional<StoredSet> NewestSet(const std::string& referrer) override;
    int Publish(const std::string& referrer, const std::string& text) override;
    void Keep(const NewVerdict& verdict) override;

private:
    std::mutex turn;
    SqliteDatabase database;
    SqliteStatement keepReport, newestReport, newestSet, addReferrer, addSet, keepVerdict;
};

}  // namespace kel::server
