// Verdicts in the store.
#include "server/store/Verdicts.h"

#include <fmt/format.h>

#include "server/store/DayCounts.h"
#include "tests/server/StoreTest.h"

namespace kel::server {

namespace {

TEST_F(StoreTest, ALaterVerdictOnAReportByTheSameRequirementsReplacesIt)
{
    RequirementSets sets(Open());
    const std::int64_t report = Upload("s", "r");
    for (const char* text : {"1", "2"}) {
        sets.Publish("r", text, "", "");
        Judge(report, "r", Result::Fail, text, "f");
    }
    raw->Execute("UPDATE verdict SET judged = 1");
    Judge(report, "r", Result::Pass, "again", "p");
    Judge(1000, "r", Result::Pass, "its report does not exist");
    const auto verdicts = Verdicts(*database).OnReport(report);
    ASSERT_EQ(verdicts.size(), 2U);
    EXPECT_EQ(verdicts[0].lines, "again") << "an older version is first";
    EXPECT_GT(verdicts[0].judged, 1) << "the time of the first judgement stays";
    EXPECT_EQ(verdicts[1].lines, "1");
    ReportFilter filter;
    filter.referrer = "r";
    filter.version = 2;
    filter.line = 1;
    for (const auto& [result, count] : {std::pair{Result::Pass, 1U}, {Result::Fail, 0U}}) {
        filter.lineResult = result;
        EXPECT_EQ(Reports(*database).List(filter).size(), count) << "a search finds the replaced result";
    }
}

TEST_F(StoreTest, EachSessionCountsOnceWithItsNewestVerdict)
{
    DayCounts counts(Open());
    RequirementSets sets(*database);
    sets.Publish("r", "1", "", "");
    const auto all = [&] {
        std::string text;
        for (const auto& [referrer, version, set, published, sessions] : counts.ByVersion("r", {}))
            text += fmt::format("v{} {}/{}/{} ", version, sessions.pass, sessions.fail, sessions.unknown);
        return text;
    };
    std::vector<std::int64_t> reports;
    for (int i = 0; i < 8; ++i)
        reports.push_back(Upload("s", "r"));
    Together(8, [&](int i) {
        Judge(reports[static_cast<std::size_t>(i)], "r", i == 7 ? Result::Pass : Result::Fail,
              R"([{"result":"fail"}])");
        return 1;
    });
    EXPECT_EQ(all(), "v1 1/0/0 ") << "verdicts at the same time";
    Judge(reports[7], "r", Result::Unknown, R"([{"result":"pass"},{"result":"none"},"odd"])");
    EXPECT_EQ(all(), "v1 0/0/1 ") << "the same report again";
    const auto lines = counts.Lines(1, {});
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].pass, 1) << "the replaced lines still count";
    EXPECT_EQ(lines[1].unknown + lines[2].unknown, 2) << "a result that is none";
    sets.Publish("r", "2", "", "");
    Judge(reports[3], "r", Result::Fail);
    EXPECT_EQ(all(), "v1 0/0/1 ") << "an older report by newer requirements";
    Judge(reports[7], "r", Result::Pass, "odd");
    EXPECT_EQ(all(), "v2 1/0/0 ") << "the same report by newer requirements";
    Judge(Upload("t", "r"), "r", Result::Fail);
    Reports(*database).DeleteSession("s", 100, nullptr);
    EXPECT_EQ(all(), "v2 1/1/0 ") << "a deletion changes the counts";
    EXPECT_EQ(counts.Reports({})["r"], 9);
    EXPECT_TRUE(counts.ByDay({"r"}, {0, Now() / DayLength - 1}).empty());
}

TEST_F(StoreTest, MergedCountsStayTheSameWhileVerdictsChangeThem)
{
    constexpr int Sessions = 24, Judges = 6, Rounds = 20;
    DayCounts counts(Open());
    RequirementSets(*database).Publish("r", "1", "", "");
    std::vector<std::int64_t> reports;
    for (int i = 0; i < Sessions; ++i)
        reports.push_back(Upload(fmt::format("s{}", i), "r"));
    const std::int64_t today = Now() / DayLength;
    const auto judge = [&](std::int64_t report, bool passes) {
        Judge(report, "r", passes ? Result::Pass : Result::Fail,
              passes ? R"([{"result":"pass"}])" : R"([{"result":"unknown"}])");
    };
    Together(Judges + 2, [&](int i) {
        for (int round = 0; round < Rounds; ++round) {
            if (i >= Judges)
                counts.MergeParts(today + 2);
            for (int report = i; i < Judges && report < Sessions; report += Judges)
                judge(reports[static_cast<std::size_t>(report)], round % 2 == 1);
        }
        return 1;
    });
    judge(Upload("last", "r"), true);
    counts.MergeParts(today);
    if (IsPostgres()) {
        EXPECT_GT(CountRows("day_verdicts WHERE part > 0"), 0) << "the counts of the last day are merged";
    }
    counts.MergeParts(today + 2);
    const auto versions = counts.ByVersion("r", {});
    ASSERT_EQ(versions.size(), 1U);
    EXPECT_EQ(versions[0].sessions.pass, Sessions + 1);
    EXPECT_EQ(versions[0].sessions.All(), Sessions + 1);
    EXPECT_EQ(counts.Lines(1, {}).at(0).pass, Sessions + 1);
    EXPECT_EQ(counts.Lines(1, {}).at(0).All(), Sessions + 1);
    EXPECT_EQ(counts.Reports({})["r"], Sessions + 1);
    for (const char* table : {"day_reports", "day_verdicts", "day_lines"})
        EXPECT_EQ(CountRows(table), counts.ByDay({"r"}, {}).size()) << table;
}

}  // namespace

}  // namespace kel::server
