// Verdicts in the store.
#include "server/store/Verdicts.h"

#include "tests/server/StoreTest.h"

namespace kel::server {

namespace {

TEST_F(StoreTest, RecentVerdictsStartWithTheNewestRequirements)
{
    Verdicts verdicts(Open());
    RequirementSets sets(*database);
    const std::int64_t older = Upload("s", "r"), newer = Upload("s", "r");
    for (const char* text : {"1", "2"}) {
        sets.Publish("r", text, "", "");
        Judge(older, "r", Result::Fail, text);
        Judge(newer, "r", Result::Unknown, text);
    }
    raw->Execute("UPDATE verdict SET judged = 1");
    Judge(newer, "r", Result::Pass, "again");
    EXPECT_EQ(verdicts.OnReport(newer).at(0).lines, "again") << "an older version is first";
    EXPECT_GT(verdicts.OnReport(newer).at(0).judged, 1) << "the time of the first judgement stays";
    Judge(1000, "r", Result::Pass, "its report does not exist");
    std::vector<std::pair<std::int64_t, std::string>> recent;
    verdicts.ForEachRecent("r", 100, [&](const StoredVerdict& verdict) {
        EXPECT_EQ(verdict.version, verdict.lines == "1" ? 1 : 2) << verdict.report;
        EXPECT_EQ(verdict.total == Result::Pass, verdict.lines == "again") << verdict.report;
        return recent.emplace_back(verdict.report, verdict.lines), true;
    });
    const decltype(recent) expected{{newer, "again"}, {newer, "1"}, {older, "2"}, {older, "1"}};
    EXPECT_EQ(recent, expected);
}

TEST_F(StoreTest, EachSessionCountsOnceWithinTheWindow)
{
    Verdicts verdicts(Open());
    RequirementSets(*database).Publish("r", "1", "", "");
    Judge(Upload("s", "r"), "r", Result::Fail);
    Judge(Upload("s", "r"), "r", Result::Pass);
    const auto counts = [&](int count) { return verdicts.CountRecent({"r"}, count).at(0); };
    EXPECT_EQ(counts(100).pass, 1);
    EXPECT_EQ(counts(100).fail, 0) << "an older verdict of the session counts";
    Judge(Upload("t", "r"), "r", Result::Fail);
    EXPECT_EQ(counts(2).pass, 1);
    EXPECT_EQ(counts(2).fail, 1);
    EXPECT_EQ(counts(1).pass, 0) << "a verdict outside of the window counts";
    std::vector<std::string> many(45, "nobody");  // more than one statement takes
    many.back() = "r";
    EXPECT_EQ(verdicts.CountRecent(many, 2).at(0).pass, 0);
    EXPECT_EQ(verdicts.CountRecent(many, 2).at(44).pass, 1);
}

}  // namespace

}  // namespace kel::server
