// The figures of the administration, and searches, without pages.
#include <gtest/gtest.h>

#include "server/admin/ReportSearch.h"
#include "server/admin/figures/ValueSample.h"
#include "tests/server/FakeConnection.h"

namespace kel::server {

namespace {

constexpr int GraphicsMemory = 72004;

Report ReportOf(const std::vector<std::string>& devices)
{
    std::string groups = "<groups><group id=\"71424\"><value>s</value></group>";
    for (std::size_t i = 0; i < devices.size(); ++i)
        groups += "<group id=\"72004\" index=\"" + std::to_string(i) + "\"><value>" + devices[i] +
                  "</value></group>";
    return Report::Read(groups + "</groups>");
}

TEST(ValueSample, CountsASessionByItsFirstDeviceOrByAnyOfThem)
{
    struct Row {
        const char* comparison;
        const char* needed;
        int first, any;
    };
    constexpr Row Rows[] = {{"at least", "6 GB", 1, 3},
                            {"at most", "2 GB", 2, 2},
                            {"equals", "12.0 GB", 1, 2},
                            {"any", "", 3, 4},
                            {"at least", "16 GB", 0, 0}};
    ValueSample first(GraphicsMemory), any(GraphicsMemory, true);
    for (const auto& devices : std::vector<std::vector<std::string>>{
             {"2.0 GB", "12.0 GB", "12.0 GB"}, {"12.0 GB", "4.0 GB"}, {"", "8.0 GB"}, {"1.0 GB"}, {""}, {}}) {
        first.Add(ReportOf(devices));
        any.Add(ReportOf(devices));
    }
    for (const Row& row : Rows) {
        const Condition condition{GraphicsMemory, ParseComparison(row.comparison), row.needed};
        EXPECT_EQ(first.Meeting(condition, false), row.first) << row.comparison << " " << row.needed;
        EXPECT_EQ(any.Meeting(condition, true), row.any) << row.comparison << " " << row.needed;
        EXPECT_EQ(any.Meeting(condition, false), row.first) << row.comparison << " " << row.needed;
    }
    EXPECT_EQ(first.Reported(), 3);
    EXPECT_EQ(any.Reported(), 4);
    EXPECT_EQ(any.Unreported(), 2);
}

/// Searches a store that never ends for a line's result that no verdict has.
TEST(ReportSearch, ByALineEndsAfterItsStretchesAndSaysHowFarItCame)
{
    constexpr std::int64_t Newest = 1'000'000'000;
    std::int64_t last = Newest;
    const auto respond = [&](const std::string& sql) {
        if (Newest - last > 1000)
            throw std::runtime_error("the search does not end");
        return sql.find("OFFSET") == std::string::npos ? SqlRows()
                                                       : SqlRows{SqlRow({std::to_string(--last)})};
    };
    const auto pool = std::make_shared<SqlPool>([&] { return std::make_unique<FakeConnection>(respond); }, 1);
    Database database(pool, pool, pool, "", {});
    ReportQuery query{"demo", {}};
    query.version = query.line = 1;
    query.result = "unknown";
    const FoundReports found = SearchReports(database, query, query.Filter());
    EXPECT_EQ(found.reached, last);
    EXPECT_TRUE(found.lines.empty());
    EXPECT_EQ(Newest - last, 10) << "stretches";
}

}  // namespace

}  // namespace kel::server
