// Connections to a database, the pool that lends them, and the versions of the tables.
#include <atomic>
#include <thread>

#include "server/base/Fault.h"
#include "server/store/DayCounts.h"
#include "server/store/Migrations.h"
#include "server/store/PostgresConnection.h"
#include "tests/server/FakeConnection.h"
#include "tests/server/StoreTest.h"

namespace kel::server {

namespace {

TEST(SqlPool, WaitsForALentConnectionWhereNoOtherCanBeOpened)
{
    std::atomic<int> opened = 0;
    SqlPool pool(
        [&]() -> std::unique_ptr<SqlConnection> {
            if (++opened > 2)
                throw Fault(503, "too many");
            return std::make_unique<FakeConnection>();
        },
        8);
    const auto borrow = [&](int) {
        for (int i = 0; i < 20; ++i) {
            const auto lease = pool.Borrow();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return 1;
    };
    EXPECT_EQ(Together(8, borrow), 8);
    SqlPool closed([]() -> std::unique_ptr<SqlConnection> { throw Fault(503, "closed"); }, 8);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 2; ++i)
        EXPECT_THROW(closed.Borrow(), Fault);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5)) << "no lease will end";
}

TEST_F(StoreTest, ConnectionsHaveTheirSettings)
{
    if (IsPostgres()) {
        PostgresConnection connection(settings.location, PostgresConnection::Patience::Request);
        EXPECT_EQ(connection.Query("SHOW statement_timeout").at(0).Text(), "10s");
        EXPECT_EQ(raw->Query("SHOW statement_timeout").at(0).Text(), "0") << "a migration is cut short";
        return;
    }
    for (const auto& [durability, level] : {std::pair{"normal", 1}, {"full", 2}}) {
        settings.durability = durability;
        EXPECT_EQ(OpenForMigration(settings)->Query("PRAGMA synchronous").at(0).Number(), level);
    }
    EXPECT_EQ(raw->Query("PRAGMA secure_delete").at(0).Number(), 1);
}

TEST_F(StoreTest, AStatementThatWasNotPreparedIsPreparedAgain)
{
    EXPECT_THROW(CountRows("report"), Fault);
    Open();
    EXPECT_EQ(CountRows("report"), 0);
}

TEST_F(StoreTest, ListsOfVerdictsUseAnIndex)
{
    Open();
    if (IsPostgres())
        return;  // which plans by what the tables hold
    const std::string verdicts = "SELECT report, requirement_set, total FROM verdict WHERE ";
    for (const auto& [sql, index] :
         {std::pair{"referrer = 1 ORDER BY report DESC, requirement_set DESC LIMIT 9", "verdict_by_referrer"},
          {"referrer = 1 AND report < 9 AND substr(results, 2, 1) = 'u' ORDER BY report DESC",
           "verdict_by_referrer"},
          {"total = 'pass' AND report < 9 ORDER BY report DESC", "verdict_by_total"},
          {"total = 'pass' AND referrer = 1 AND report < 9 ORDER BY report DESC", "verdict_by_both"}}) {
        SqlRows plan = raw->Query("EXPLAIN QUERY PLAN " + verdicts + sql);
        EXPECT_EQ(plan.size(), 1U) << "a sort: " << sql;
        for (int column = 0; column < 3; ++column)
            plan.at(0).Text();
        EXPECT_NE(plan[0].Text().find(std::string("COVERING INDEX ") + index), std::string::npos) << sql;
    }
}

TEST_F(StoreTest, AnOlderDatabaseComesToTheNewestVersionWithItsData)
{
    raw->Execute(raw->Migrations()[0]);
    raw->SetVersion(1);
    raw->Execute(
        "INSERT INTO referrer (name) VALUES ('other'), ('r');"
        "INSERT INTO requirement_set (referrer, version, published, text) VALUES (2, 1, 5, '{}');"
        "INSERT INTO report (session, referrer, \"user\", received, body) VALUES ('s', 'r', '', 6, 'b'), "
        "('s', 'none', '', 86400000, 'b');"
        "INSERT INTO verdict (report, requirement_set, judged, item, total, lines) VALUES (1, 1, 7, 'i', "
        "'fail', '[{\"result\":\"pass\"},1]'); "
        "INSERT INTO verdict SELECT 2, requirement_set, judged, item, total, lines FROM verdict");
    EXPECT_THROW(OpenDatabase(settings), std::runtime_error);
    Together(4, [&](int) { return Migrate(*OpenForMigration(settings)); });
    Open();
    EXPECT_EQ(Verdicts(*database).OnReport(1).at(0).total, Result::Fail);
    DayCounts counts(*database);
    const auto days = counts.ByDay({"r"}, {});
    ASSERT_EQ(days.size(), 1U) << "a session counts twice";
    EXPECT_EQ(days[0].day, 1);
    EXPECT_EQ(days[0].sessions.fail, 1);
    EXPECT_EQ(counts.Lines(1, {}).at(0).pass, 1);
    EXPECT_EQ(counts.Lines(1, {}).at(1).unknown, 1);
    for (const auto& [line, result, matches] :
         {std::tuple{1, Result::Pass, 2U}, {1, Result::Unknown, 0U}, {2, Result::Unknown, 2U}}) {
        ReportFilter filter;
        filter.referrer = "r";
        filter.version = 1;
        filter.line = line;
        filter.lineResult = result;
        EXPECT_EQ(Reports(*database).List(filter).size(), matches)
            << "line " << line << " " << ToString(result);
    }
    EXPECT_EQ(counts.Reports({1, 2})[""], 1);
    EXPECT_EQ(counts.Reports({0, 1})["r"], 1);
    EXPECT_EQ(Reports(*database).Find(1)->body, "b");
    EXPECT_EQ(RequirementSets(*database).Newest("r")->published, 5);
    EXPECT_EQ(RequirementSets(*database).Publish("r", "2", "ann", "ann"), 2);
    raw->SetVersion(static_cast<int>(raw->Migrations().size()) + 1);
    EXPECT_THROW(Migrate(*raw), std::runtime_error);
    EXPECT_THROW(OpenDatabase(settings), std::runtime_error);
}

}  // namespace

}  // namespace kel::server
