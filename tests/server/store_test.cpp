// Every operation of the store, in the database that KEL_STORE names: a file, or a PostgreSQL server's.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <future>
#include <random>
#include <set>

#include "server/base/Fault.h"
#include "server/store/Migrations.h"
#include "server/store/OpenStore.h"

namespace kel::server {

namespace {

constexpr std::int64_t Minute = 60'000;

class StoreTest : public testing::Test {
protected:
    void SetUp() override
    {
        settings.database = std::getenv("KEL_STORE");
        if (settings.database.starts_with("postgresql:"))
            OpenForMigration(settings)->Execute("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
        else
            for (const char* end : {"", "-wal", "-shm"})
                std::filesystem::remove(settings.database + end);
        raw = OpenForMigration(settings);
    }

    Store& Open()
    {
        Migrate(*raw);
        store = OpenStore(settings);
        return *store;
    }

    std::int64_t Upload(const NewReport& report)
    {
        store->Keep(report);
        return store->NewestReport(report.session)->id;
    }

    int Count(const std::string& table)
    {
        return static_cast<int>(raw->Query("SELECT count(*) FROM " + table).at(0).Number(0));
    }

    StoreSettings settings;
    std::unique_ptr<SqlConnection> raw;
    std::unique_ptr<Store> store;
};

/// What all of so many threads, started together, come to.
template <typename Do>
auto Together(int count, Do work)
{
    std::vector<std::future<decltype(work(0))>> running;
    for (int i = 0; i < count; ++i)
        running.push_back(std::async(std::launch::async, work, i));
    std::vector<decltype(work(0))> results;
    for (auto& one : running)
        results.push_back(one.get());
    return results;
}

int StatusOf(const std::function<void()>& act)
{
    try {
        act();
    } catch (const Fault& fault) {
        return fault.Status();
    }
    return 200;
}

TEST_F(StoreTest, PublishedVersionsCountUpAndRepeatNothing)
{
    Store& s = Open();
    EXPECT_FALSE(s.NewestSet("r"));
    for (const auto& [text, version] : {std::pair{"a", 1}, {"a", 1}, {"b", 2}, {"a", 3}})
        EXPECT_EQ(s.Publish("r", text, "ann"), version);
    EXPECT_EQ(s.Publish("B", "other", ""), 1);
    const auto versions = s.Versions("r");
    ASSERT_EQ(versions.size(), 3U);
    EXPECT_EQ(versions[0].id, s.NewestSet("r")->id);
    EXPECT_EQ(s.SetText(versions[1].id) + s.SetText(versions[0].id) + s.SetText(-1), "ba");
    EXPECT_EQ(versions[2].author, "ann");
    EXPECT_NEAR(static_cast<double>(versions[0].published), static_cast<double>(Now()), Minute);
    const auto more = Together(8, [&](int i) { return s.Publish("r", std::to_string(i), ""); });
    EXPECT_EQ(std::set<int>(more.begin(), more.end()), (std::set{4, 5, 6, 7, 8, 9, 10, 11}));
    s.KeepDraft("a", "draft", 0, "");
    s.KeepDraft("r", "draft", 0, "");
    std::string products;
    for (const Product& product : s.Products())
        products += product.referrer + std::to_string(product.version) + (product.hasDraft ? "+" : "") +
                    (product.published > 0 ? "p" : "") + " ";
    EXPECT_EQ(products, "B1p a0+ r11+p ");
}

TEST_F(StoreTest, OneOfTwoEditorsWins)
{
    Store& s = Open();
    EXPECT_EQ(s.KeepDraft("r", "old", 7, "ann"), std::nullopt);
    EXPECT_EQ(s.KeepDraft("r", "mine", 0, "ann"), 1);
    EXPECT_EQ(s.KeepDraft("r", "yours", 0, "bob"), std::nullopt);
    EXPECT_EQ(s.KeepDraft("r", "ours", 1, "bob"), 2);
    EXPECT_EQ(s.KeepDraft("r", "late", 1, "ann"), std::nullopt);
    EXPECT_EQ(s.PublishDraft("r", 1, "ann"), std::nullopt);
    EXPECT_FALSE(s.DropDraft("r", 1));
    EXPECT_EQ(s.FindDraft("r")->text + s.FindDraft("r")->author, "oursbob");
    EXPECT_EQ(s.PublishDraft("r", 2, "ann"), 1);
    EXPECT_EQ(s.SetText(s.NewestSet("r")->id), "ours");
    EXPECT_FALSE(s.FindDraft("r"));
    EXPECT_EQ(s.KeepDraft("r", "dead", 3, ""), std::nullopt);
    const int next = s.KeepDraft("r", "next", 0, "").value_or(0);
    EXPECT_GT(next, 2);  // who still has an older page open overwrites nothing
    EXPECT_TRUE(s.DropDraft("r", next));
    EXPECT_FALSE(s.DropDraft("r", next));
    const auto first =
        Together(8, [&](int i) { return s.KeepDraft("n", std::to_string(i), 0, "").has_value(); });
    EXPECT_EQ(std::count(first.begin(), first.end(), true), 1);
    const auto second = Together(8, [&](int) { return s.PublishDraft("n", 1, "").has_value(); });
    EXPECT_EQ(std::count(second.begin(), second.end(), true), 1);
}

TEST_F(StoreTest, AFilterLetsPassWhatItsFieldsSayInPagesWithoutGaps)
{
    Store& s = Open();
    std::vector<std::int64_t> sets;
    for (const char* referrer : {"a", "b", "a"}) {
        s.Publish(referrer, std::to_string(sets.size()), "");
        sets.push_back(s.NewestSet(referrer)->id);
    }
    std::mt19937 random(1);  // NOLINT: the same every time
    const std::int64_t start = Now() - 300 * Minute;
    for (int i = 0; i < 120; ++i) {
        const std::string referrer = std::string("abc").substr(random() % 3, 1);
        const std::int64_t id = Upload({"s" + std::to_string(random() % 4), referrer, "u", "", "body"});
        raw->Query(
            "UPDATE report SET received = $1 WHERE id = $2",
            {start + (i * 2 + static_cast<std::int64_t>(random() % 50)) * Minute, id});  // clocks differ
        const int set = referrer == "a" ? 0 : 1;
        for (const int judge : {set, set + 2})
            if (referrer != "c" && judge < 3 && random() % 3 > 0)
                s.Keep(NewVerdict{id, sets[static_cast<std::size_t>(judge)], "",
                                  random() % 2 > 0 ? "pass" : "fail", "[]"});
    }
    ReportFilter everything;
    everything.count = 1000;
    const auto all = s.Reports(everything);
    ASSERT_EQ(all.size(), 120U);
    for (unsigned fields = 0; fields < 32; ++fields) {
        ReportFilter filter;
        filter.referrer = (fields & 1) != 0 ? "a" : "";
        filter.session = (fields & 2) != 0 ? "s1" : "";
        filter.total = (fields & 4) != 0 ? "pass" : "";
        filter.from = (fields & 8) != 0 ? start + 100 * Minute : 0;
        filter.until = (fields & 16) != 0 ? start + 200 * Minute : 0;
        filter.count = 7;
        std::vector<std::int64_t> expected, back, forth;
        for (const ReportLine& line : all)
            if ((filter.referrer.empty() || line.referrer == "a") &&
                (filter.session.empty() || line.session == "s1") &&
                (filter.total.empty() || line.total == "pass") && line.received >= filter.from &&
                (filter.until == 0 || line.received < filter.until))
                expected.push_back(line.id);
        ASSERT_FALSE(expected.empty());
        for (auto page = s.Reports(filter); !page.empty(); page = s.Reports(filter)) {
            for (const ReportLine& line : page)
                back.push_back(line.id);
            filter.beforeId = back.back();
        }
        EXPECT_EQ(back, expected) << fields;
        filter.beforeId = filter.afterId = 0;
        for (auto page = s.Reports(filter); !page.empty(); page = s.Reports(filter)) {
            for (const ReportLine& line : page)
                forth.push_back(line.id);
            filter.afterId = forth.back();
        }
        std::reverse(forth.begin(), forth.end());
        EXPECT_EQ(forth, expected) << fields;
    }
}

TEST_F(StoreTest, PagesForthMissNoReportThatComesIn)
{
    Store& s = Open();
    constexpr int Each = 150;
    auto coming = std::async(std::launch::async, [&] {
        Together(3, [&](int i) {
            for (int n = 0; n < Each; ++n)
                s.Keep(NewReport{std::to_string(i), "", "", "",
                                 std::string(static_cast<std::size_t>(n % 5) * 50'000, 'x')});
            return 0;
        });
    });
    ReportFilter filter;
    filter.afterId = 0;
    filter.count = 3;
    int seen = 0;
    for (bool isLast = false; !isLast;) {
        isLast = coming.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        for (auto page = s.Reports(filter); !page.empty(); page = s.Reports(filter)) {
            for (const ReportLine& line : page) {
                EXPECT_GT(line.id, filter.afterId);
                filter.afterId = line.id;
                ++seen;
            }
        }
    }
    EXPECT_EQ(seen, 3 * Each);
}

TEST_F(StoreTest, VerdictsAreOfTheNewestRequirementsFirst)
{
    Store& s = Open();
    std::vector<std::int64_t> reports;
    for (int i = 0; i < 3; ++i)
        reports.push_back(Upload({"s", "r", "u", "m", "body " + std::to_string(i)}));
    for (const char* text : {"1", "2"}) {
        s.Publish("r", text, "");
        for (const std::int64_t report : reports)
            s.Keep(NewVerdict{report, s.NewestSet("r")->id, "item", report == reports[1] ? "fail" : "unknown",
                              text});
    }
    s.Keep(NewVerdict{reports[2], s.NewestSet("r")->id, "item", "pass", "again"});
    s.Keep(NewVerdict{1000, s.NewestSet("r")->id, "item", "pass", "the report has gone"});
    std::string recent;
    for (const StoredVerdict& v : s.RecentVerdicts("r", 5))
        recent += std::to_string(v.report - reports[0]) + v.session + v.referrer + std::to_string(v.version) +
                  v.total + v.lines + " ";
    EXPECT_EQ(recent, "2sr2passagain 2sr1unknown1 1sr2fail2 1sr1fail1 0sr2unknown2 ");
    EXPECT_EQ(s.VerdictsOf(reports[2]).at(0).lines + s.VerdictsOf(reports[2]).at(1).lines, "again1");
    const Totals totals = s.RecentTotals("r", 100);
    EXPECT_EQ(std::tuple(totals.pass, totals.fail, totals.unknown), std::tuple(1, 2, 3));
    EXPECT_EQ(s.RecentTotals("r", 2).unknown, 1);
    EXPECT_EQ(s.RecentReports("r", 2).at(1).body, "body 1");
    EXPECT_EQ(s.RecentReports("r", 2).size(), 2U);
    const FullReport full = s.FindReport(reports[0]).value_or(FullReport{});
    EXPECT_EQ(full.session + full.referrer + full.user + full.machine + full.body, "srumbody 0");
    EXPECT_FALSE(s.FindReport(1000));
}

TEST_F(StoreTest, WhatIsDeletedTakesItsVerdictsAlongAndNoMoreThanAsked)
{
    Store& s = Open();
    s.Publish("r", "1", "");
    for (int i = 0; i < 12; ++i) {
        const bool odd = i % 2 != 0;
        const std::int64_t id = Upload({odd ? "odd" : "even", "r", "", i < 6 ? "m'" : "", "b"});
        s.Keep(NewVerdict{id, s.NewestSet("r")->id, "", "pass", "[]"});
    }
    raw->Query("UPDATE report SET received = id");
    const auto check = [&](int deleted, int expected, int left) {
        EXPECT_EQ(deleted, expected);
        EXPECT_EQ(Count("report"), left);
        EXPECT_EQ(Count("verdict"), left);
    };
    const std::int64_t first = s.RecentReports("r", 12).back().id;
    check(s.DeleteOlder(first, 5), 0, 12);
    check(s.DeleteOlder(first + 1, 5), 1, 11);
    check(s.DeleteMachine("", 5), 0, 11);  // no machine is not one
    check(s.DeleteMachine("m'", 3), 3, 8);
    check(s.DeleteMachine("m'", 3), 2, 6);
    check(s.DeleteSession("od", 5), 0, 6);
    check(s.DeleteSession("odd", 2), 2, 4);
    check(s.DeleteSession("odd", 2), 1, 3);
    const auto both = Together(2, [&](int) { return s.DeleteOlder(Now(), 10); });
    check(both[0] + both[1], 3, 0);
    EXPECT_GT(Upload({"new", "", "", "", ""}), first + 11);  // an id never comes again
}

TEST_F(StoreTest, AccountsLogInsAndNotes)
{
    Store& s = Open();
    s.Keep(Account{"ann", "h1", Role::Editor});
    s.Keep(Account{"Bob", "h2", Role::Reader});
    EXPECT_EQ(s.Accounts().at(0).name + s.Accounts().at(1).hash, "Bobh1");
    const auto logIn = [&](const char* key, const char* name, std::int64_t ends) {
        s.Keep(Login{key, name, Role::Reader, "token", ends});
    };
    logIn("over", "ann", Now());
    logIn("long", "ann", Now() + Minute);
    logIn("bob", "Bob", Now() + Minute);
    EXPECT_EQ(Count("login_session"), 2);
    EXPECT_FALSE(s.FindLogin("over"));
    EXPECT_EQ(s.FindLogin("long")->account + s.FindLogin("long")->formToken, "anntoken");
    EXPECT_EQ(s.FindLogin("long")->role, Role::Editor);
    s.Keep(Account{"ann", "h3", Role::Reader});
    EXPECT_FALSE(s.FindLogin("long"));
    EXPECT_EQ(s.FindAccount("ann")->hash, "h3");
    EXPECT_TRUE(s.RemoveAccount("Bob"));
    EXPECT_FALSE(s.RemoveAccount("Bob"));
    EXPECT_FALSE(s.FindLogin("bob"));
    logIn("end", "ann", Now() + Minute);
    s.EndLogin("end");
    EXPECT_FALSE(s.FindLogin("end"));
    for (const char* subject : {"1", "2", "3"})
        s.Note("ann", "did", subject);
    const auto notes = s.Notes(0, 2);
    EXPECT_EQ(notes.at(0).subject + notes.at(1).subject + notes.at(0).account, "32ann");
    EXPECT_EQ(s.Notes(notes[1].id, 2).at(0).subject, "1");
}

TEST_F(StoreTest, TextsComeBackAsTheyAre)
{
    Store& s = Open();
    const std::string large = "'\"\\%_$1?;--\n\t" + std::string(2'000'000, 'x') + "é€😀";
    for (const std::string& text : {std::string(), large}) {
        const std::int64_t id = Upload({"s'\"é", "r", text, text, text});
        const FullReport report = s.FindReport(id).value_or(FullReport{});
        EXPECT_TRUE(report.body == text && report.machine == text && report.user == text);
    }
    EXPECT_EQ(s.DeleteMachine(large, 5), 1);
    for (const std::string& text :
         {std::string("a\0b", 3), std::string("\xff"), std::string("\xed\xa0\x80")}) {
        EXPECT_EQ(StatusOf([&] { s.Keep(NewReport{"s", "", "", "", text}); }), 400);
        EXPECT_EQ(StatusOf([&] { s.NewestReport(text); }), 400);
        EXPECT_EQ(StatusOf([&] { s.Publish("r", text, ""); }), 400);
    }
    EXPECT_EQ(s.Publish("r", "fine", ""), 1);
}

TEST_F(StoreTest, AnOlderDatabaseComesToTheNewestVersionWithItsData)
{
    raw->Begin();
    raw->Execute(raw->Migrations()[0]);
    raw->SetVersion(1);
    raw->Execute(
        "INSERT INTO referrer (name) VALUES ('other'), ('r');"
        "INSERT INTO requirement_set (referrer, version, published, text) VALUES (2, 1, 5, '{}');"
        "INSERT INTO report (session, referrer, \"user\", received, body) VALUES ('s', 'r', '', 6, 'b');"
        "INSERT INTO verdict (report, requirement_set, judged, item, total, lines) VALUES (1, 1, 7, 'i', "
        "'fail', '[]');"
        "COMMIT");
    EXPECT_THROW(OpenStore(settings), std::runtime_error);
    Together(4, [&](int) { return Migrate(*OpenForMigration(settings)); });
    Store& s = Open();
    EXPECT_EQ(s.RecentVerdicts("r", 5).at(0).total, "fail");
    EXPECT_EQ(s.FindReport(1)->body, "b");
    EXPECT_EQ(s.NewestSet("r")->published, 5);
    EXPECT_EQ(s.Publish("r", "2", "ann"), 2);
    raw->SetVersion(3);
    EXPECT_THROW(Migrate(*raw), std::runtime_error);
    EXPECT_THROW(OpenStore(settings), std::runtime_error);
}

}  // namespace

}  // namespace kel::server
