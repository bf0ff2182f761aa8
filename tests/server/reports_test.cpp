// Reports in the store: lists, pages, concurrent use, and deletion.
#include "server/store/Reports.h"

#include <algorithm>
#include <array>
#include <random>

#include "server/base/Fault.h"
#include "tests/server/StoreTest.h"

namespace kel::server {

namespace {

using Ids = std::vector<std::int64_t>;

TEST_F(StoreTest, FilteredPagesContainEveryMatch)
{
    Reports reports(Open());
    RequirementSets sets(*database);
    std::mt19937 random(1);  // NOLINT: the same every time
    const auto below = [&](unsigned bound) { return static_cast<int>(random() % bound); };
    const std::int64_t start = Now() - 300 * Minute;
    Ids uploaded;
    for (int i = 0; i < 120; ++i) {
        const char* referrer = std::array{"a", "b", "c"}.at(static_cast<std::size_t>(below(3)));
        uploaded.push_back(Upload("s" + std::to_string(below(4)), referrer));
        raw->Query("UPDATE report SET received = $1 WHERE id = $2",
                   {start + (i * 2 + below(50)) * Minute, uploaded.back()});  // clocks differ
    }
    for (const char* text : {"1", "2"}) {  // "c" has no requirements
        for (const char* referrer : {"a", "b"}) {
            sets.Publish(referrer, text, "", "");
            for (const std::int64_t id : uploaded) {
                if (reports.Find(id)->referrer == referrer && below(3) > 0)
                    Judge(id, referrer, below(2) > 0 ? Result::Pass : Result::Fail);
            }
        }
    }
    ReportFilter everything;
    everything.count = 1000;
    const auto all = reports.List(everything);
    ASSERT_EQ(all.size(), uploaded.size());
    for (unsigned fields = 0; fields < 32; ++fields) {
        ReportFilter filter;
        filter.count = 7;
        if (fields & 1)
            filter.referrer = "a";
        if (fields & 2)
            filter.session = "s1";
        if (fields & 4)
            filter.total = Result::Pass;
        if (fields & 8)
            filter.from = start + 100 * Minute;
        if (fields & 16)
            filter.until = start + 200 * Minute;
        Ids expected, backward, forward;
        for (const ReportLine& line : all) {
            if (line.referrer.ends_with(filter.referrer) && line.session.ends_with(filter.session) &&
                (!filter.total || line.total == filter.total) && line.received >= filter.from &&
                (filter.until == 0 || line.received < filter.until))
                expected.push_back(line.id);
        }
        ASSERT_FALSE(expected.empty()) << "fields " << fields;
        const auto read = [&](Ids& ids, std::int64_t& last) {
            for (auto page = reports.List(filter); !page.empty(); page = reports.List(filter)) {
                for (const ReportLine& line : page)
                    ids.push_back(last = line.id);
            }
        };
        read(backward, filter.beforeId);
        filter.beforeId = filter.afterId = 0;
        read(forward, filter.afterId);
        std::reverse(forward.begin(), forward.end());
        EXPECT_EQ(backward, expected) << "fields " << fields;
        EXPECT_EQ(forward, expected) << "fields " << fields;
    }
}

TEST_F(StoreTest, ForwardPagingStopsAtAnUncommittedReportWithoutWaiting)
{
    Reports reports(Open());
    if (!IsPostgres())
        return;  // where one report is stored at a time
    const auto seen = [&] {
        ReportFilter filter;
        filter.afterId = 0;
        std::string sessions;
        for (const ReportLine& line : reports.List(filter))
            sessions += line.session;
        return sessions;
    };
    Upload("a");
    EXPECT_EQ(seen(), "a");
    raw->Execute(
        "BEGIN; INSERT INTO report (session, referrer, \"user\", received, body) VALUES ('b', '', '', 1, "
        "'')");
    auto pages = std::async(std::launch::async, seen);
    Upload("c");
    EXPECT_EQ(pages.get(), "a");
    EXPECT_EQ(seen(), "a") << "b would be missed";
    raw->Execute("COMMIT");
    EXPECT_EQ(seen(), "abc");
}

TEST_F(StoreTest, ReportsOfAnySizeComeInOrder)
{
    Reports reports(Open());
    Ids ids;
    const auto size = [](std::size_t i) {
        return i % 10 < 3 ? 3'000'000 : i;
    };  // two large ones exceed a batch
    for (std::size_t i = 0; i < 30; ++i)
        ids.push_back(Upload("s", "r", std::string(size(i), 'x')));
    const auto read = [&](const Ids& wanted, std::size_t maxCount) {
        Ids seen;
        reports.ForEach(wanted, [&](const FullReport& report) {
            const auto i = static_cast<std::size_t>(report.id - ids[0]);
            EXPECT_EQ(report.body.size(), size(i)) << "the body of report " << i;
            seen.push_back(report.id);
            return seen.size() < maxCount;
        });
        return seen;
    };
    EXPECT_EQ(read(ids, 100), ids);
    const Ids descending(ids.rbegin(), ids.rend());
    EXPECT_EQ(read(descending, 100), descending);
    EXPECT_EQ(read(ids, 2).size(), 2U);
    raw->Query("DELETE FROM report WHERE id = $1", {ids[4]});
    Ids left = ids;
    left.erase(left.begin() + 4);
    EXPECT_EQ(read(ids, 100), left);
}

TEST_F(StoreTest, DeletionsIncludeVerdictsAndRespectTheirBound)
{
    Reports reports(Open());
    RequirementSets(*database).Publish("r", "1", "", "");
    std::int64_t first = 0;
    for (int i = 0; i < 12; ++i) {
        const std::int64_t id = Upload(i % 2 != 0 ? "odd" : "even", "r", "", i < 6 ? "m'" : "");
        first = i == 0 ? id : first;
        Judge(id, "r", Result::Pass);
    }
    raw->Query("UPDATE report SET received = id");
    EXPECT_EQ(reports.DeleteOlder(first, 5, nullptr), 0);
    EXPECT_EQ(reports.DeleteOlder(first + 1, 5, nullptr), 1);
    EXPECT_EQ(CountRows("verdict"), 11);
    EXPECT_EQ(reports.DeleteMachine("", 3, nullptr), 0) << "a missing machine is not a machine";
    EXPECT_EQ(reports.DeleteMachine("m'", 3, nullptr), 3);
    EXPECT_EQ(CountRows("verdict"), 8);
    const std::int64_t entries = CountRows("audit");
    DeletionEntry entry{"ann", "deleted", "odd"};
    EXPECT_EQ(reports.DeleteSession("od", 2, &entry), 0);
    EXPECT_EQ(reports.DeleteSession("odd", 2, &entry), 2);
    EXPECT_EQ(reports.DeleteSession("odd", 3, &entry), 2);
    EXPECT_EQ(CountRows("verdict"), 8 - 4);
    EXPECT_EQ(CountRows("audit"), entries + 1) << "several calls are one entry";
    EXPECT_EQ(raw->Query("SELECT subject FROM audit ORDER BY id DESC").at(0).Text(), "odd, 4 reports");
    EXPECT_EQ(Together(2, [&](int) { return reports.DeleteOlder(Now(), 10, nullptr); }), 4);
    EXPECT_GT(Upload("new"), first + 11) << "an id is used again";
}

TEST_F(StoreTest, DeletionsAndVerdictsAtTheSameTimeDoNotFail)
{
    Reports reports(Open());
    RequirementSets(*database).Publish("r", "1", "", "");
    const std::int64_t deleted = Upload("s", "r");
    raw->Begin();
    raw->Query("DELETE FROM report WHERE id = $1", {deleted});
    auto verdict = std::async(std::launch::async, [&] { Judge(deleted, "r", Result::Pass); });
    verdict.wait_for(std::chrono::milliseconds(300));
    raw->Execute("COMMIT");
    EXPECT_NO_THROW(verdict.get());
    EXPECT_EQ(CountRows("verdict"), 0);
    const std::int64_t used = Upload("s", "r");
    raw->Begin();
    raw->Query("SELECT 1 FROM report WHERE id = $1" + std::string(raw->ShareReports()), {used});
    auto deletion = std::async(std::launch::async, [&] { return reports.DeleteSession("s", 5, nullptr); });
    deletion.wait_for(std::chrono::milliseconds(300));
    raw->Execute("COMMIT");
    EXPECT_EQ(deletion.get(), 1) << "a report in use by a verdict is skipped";
}

TEST_F(StoreTest, TextsComeBackUnchanged)
{
    Reports reports(Open());
    const std::string large = "'\"\\%_$1?;--\n\t" + std::string(2'000'000, 'x') + "é€😀";
    for (const std::string& text : {std::string(), large}) {
        const auto report = reports.Find(reports.Add({"s'\"é", "r", text, text + "m", text}));
        ASSERT_TRUE(report);
        EXPECT_TRUE(report->user == text);
        EXPECT_TRUE(report->machine == text + "m");
        EXPECT_TRUE(report->body == text);
    }
    EXPECT_EQ(reports.DeleteMachine(large + "m", 5, nullptr), 1);
    RequirementSets sets(*database);
    for (const std::string& text : {std::string("a\0b", 3), std::string("\xff"), std::string("\xc1\xbf")}) {
        EXPECT_THROW(reports.NewestOf(text), Fault);
        EXPECT_THROW(sets.Publish("r", text, "", ""), Fault);
    }
    EXPECT_EQ(sets.Publish("r", "fine", "", ""), 1);
}

}  // namespace

}  // namespace kel::server
