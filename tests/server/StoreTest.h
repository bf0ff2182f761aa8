#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <future>

#include "server/store/Migrations.h"
#include "server/store/OpenDatabase.h"
#include "server/store/Reports.h"
#include "server/store/RequirementSets.h"
#include "server/store/Verdicts.h"

namespace kel::server {

inline constexpr std::int64_t Minute = 60'000;

/// A test in the database that KEL_STORE names, a file or a PostgreSQL server's, which is emptied first.
class StoreTest : public testing::Test {
protected:
    void SetUp() override
    {
        const char* const store = std::getenv("KEL_STORE");
        ASSERT_TRUE(store) << "KEL_STORE names no database; EndToEnd.database sets it";
        settings.location = store;
        if (IsPostgres())
            OpenForMigration(settings)->Execute("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
        for (const char* end : {"", "-wal", "-shm"})
            std::filesystem::remove(settings.location + end);
        raw = OpenForMigration(settings);
    }

    Database& Open()
    {
        Migrate(*raw);
        database = OpenDatabase(settings);
        return *database;
    }

    bool IsPostgres() const { return settings.location.starts_with("postgresql:"); }

    std::int64_t Upload(const std::string& session, const std::string& referrer = "",
                        const std::string& body = "", const std::string& machine = "")
    {
        return Reports(*database).Add({session, referrer, "u", machine, body});
    }

    /// Saves a verdict on a report by a referrer's newest requirements.
    void Judge(std::int64_t report, const std::string& referrer, Result total,
               const std::string& lines = "[]", const std::string& results = "")
    {
        const std::int64_t set = RequirementSets(*database).Newest(referrer).value().id;
        Verdicts(*database).Save({report, set, "", total, lines, results});
    }

    std::int64_t CountRows(const std::string& table)
    {
        return raw->Query("SELECT count(*) FROM " + table).at(0).Number();
    }

    DatabaseSettings settings;
    std::unique_ptr<SqlConnection> raw;
    std::unique_ptr<Database> database;
};

/// The sum of the results of the given number of threads.
template <typename Do>
int Together(int count, Do work)
{
    std::vector<std::future<decltype(work(0))>> running;
    for (int i = 0; i < count; ++i)
        running.push_back(std::async(std::launch::async, work, i));
    int sum = 0;
    for (auto& one : running)
        sum += one.get();
    return sum;
}

}  // namespace kel::server
