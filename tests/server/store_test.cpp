// Every operation of the store, in the database that KEL_STORE names: a file, or a PostgreSQL server's.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <future>
#include <random>
#include <sstream>
#include <thread>

#include "server/base/Fault.h"
#include "server/store/Migrations.h"
#include "server/store/OpenStore.h"
#include "server/store/PostgresConnection.h"
#include "server/store/SqlPool.h"

namespace kel::server {

namespace {

constexpr std::int64_t Minute = 60'000;

/// Anything as a text.
struct Word {
    template <typename Value>
    Word(const Value& value) : text((std::ostringstream() << value).str())  // NOLINT: implicit
    {
    }
    std::string text;
};

/// In braces: what stands there happens in its order.
std::string Told(std::initializer_list<Word> words)
{
    std::string told;
    for (const Word& word : words)
        told += word.text + ' ';
    return told;
}

class StoreTest : public testing::Test {
protected:
    void SetUp() override
    {
        settings.database = std::getenv("KEL_STORE");
        if (settings.database.starts_with("postgresql:"))
            OpenForMigration(settings)->Execute("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
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
        const std::int64_t id = store->Keep(report);
        EXPECT_EQ(store->NewestReport(report.session), id);
        return id;
    }

    std::int64_t Count(const std::string& table)
    {
        return raw->Query("SELECT count(*) FROM " + table)[0].Number(0);
    }

    StoreSettings settings;
    std::unique_ptr<SqlConnection> raw;
    std::unique_ptr<Store> store;
};

/// The sum of what so many threads come to.
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

TEST_F(StoreTest, PublishedVersionsCountUpAndRepeatNothing)
{
    Store& s = Open();
    EXPECT_FALSE(s.NewestSet("r"));
    for (const auto& [text, version] : {std::pair{"a", 1}, {"a", 1}, {"b", 2}, {"a", 3}})
        EXPECT_EQ(s.Publish("r", text, "ann"), version);
    EXPECT_EQ(s.Publish("B", "other", ""), 1);
    const auto sets = s.Versions("r");
    EXPECT_EQ(Told({sets.size(), s.SetText(sets.at(1).id), s.SetText(s.NewestSet("r")->id), sets[2].author}),
              "3 b a ann ");
    EXPECT_LT(Now() - sets[0].published, Minute);
    EXPECT_EQ(Together(8, [&](int i) { return s.Publish("r", std::to_string(i), ""); }),
              4 + 5 + 6 + 7 + 8 + 9 + 10 + 11);
    s.KeepDraft("a", "draft", 0, "");
    s.KeepDraft("r", "draft", 0, "");
    std::string products;
    for (const Product& product : s.Products())
        products += Told({product.referrer, product.version, product.hasDraft, product.published > 0});
    EXPECT_EQ(products, "B 1 0 1 a 0 1 0 r 11 1 1 ");
}

TEST_F(StoreTest, OneOfTwoEditorsWins)
{
    Store& s = Open();
    const auto keep = [&](auto text, int revision) {
        return s.KeepDraft("r", text, revision, "ann").value_or(0);
    };
    EXPECT_EQ(Told({keep("old", 7), keep("mine", 0), keep("yours", 0), keep("ours", 1), keep("late", 1)}),
              "0 1 0 2 0 ");
    EXPECT_EQ(Told({s.PublishDraft("r", 1, "").has_value(), s.DropDraft("r", 1, ""), s.FindDraft("r")->text}),
              "0 0 ours ");
    EXPECT_EQ(s.PublishDraft("r", 2, "ann"), 1);
    EXPECT_EQ(Told({s.SetText(s.NewestSet("r")->id), s.FindDraft("r").has_value(), keep("dead", 3)}),
              "ours 0 0 ");
    const int next = keep("next", 0);
    EXPECT_GT(next, 2);  // who still has an older page open overwrites nothing
    EXPECT_EQ(Told({s.DropDraft("r", next, "bob"), s.DropDraft("r", next, "bob")}), "1 0 ");
    EXPECT_EQ(Together(8, [&](int i) { return s.KeepDraft("n", std::to_string(i), 0, "").has_value(); }), 1);
    EXPECT_EQ(Together(8, [&](int) { return s.PublishDraft("n", 1, "").has_value(); }), 1);
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
    const auto below = [&](unsigned most) { return static_cast<int>(random() % most); };
    const std::int64_t start = Now() - 300 * Minute;
    for (int i = 0; i < 120; ++i) {
        const int referrer = below(3);  // "c" has no requirements
        const std::int64_t id =
            Upload({Told({"s", below(4)}), std::string(1, "abc"[referrer]), "u", "", "body"});
        raw->Query("UPDATE report SET received = $1 WHERE id = $2",
                   {start + (i * 2 + below(50)) * Minute, id});  // clocks differ
        for (unsigned set = static_cast<unsigned>(referrer); set < 3 && referrer < 2; set += 2)
            if (below(3) > 0)
                s.Keep(NewVerdict{id, sets[set], "", below(2) > 0 ? "pass" : "fail", "[]"});
    }
    const auto all = s.Reports({"", "", "", 0, 0, 0, -1, 1000});
    ASSERT_EQ(all.size(), 120U);
    for (unsigned fields = 0; fields < 32; ++fields) {
        const auto field = [&](unsigned bit, auto value) {
            return (fields & bit) != 0 ? value : decltype(value)();
        };
        ReportFilter filter{field(1, std::string("a")),
                            field(2, std::string("s 1 ")),
                            field(4, std::string("pass")),
                            field(8, start + 100 * Minute),
                            field(16, start + 200 * Minute),
                            0,
                            -1,
                            7};
        std::string expected, backward, forward;
        for (const ReportLine& line : all)
            if (line.referrer.ends_with(filter.referrer) && line.session.ends_with(filter.session) &&
                line.total.ends_with(filter.total) && line.received >= filter.from &&
                (filter.until == 0 || line.received < filter.until))
                expected += Told({line.id});
        ASSERT_FALSE(expected.empty());
        for (auto page = s.Reports(filter); !page.empty(); page = s.Reports(filter))
            for (const ReportLine& line : page)
                backward += Told({filter.beforeId = line.id});
        filter.beforeId = filter.afterId = 0;
        for (auto page = s.Reports(filter); !page.empty(); page = s.Reports(filter))
            for (const ReportLine& line : page)
                forward = Told({filter.afterId = line.id}) + forward;
        EXPECT_EQ(backward, expected) << fields;
        EXPECT_EQ(forward, expected) << fields;
    }
}

TEST_F(StoreTest, PagesForthMissNoReportThatComesIn)
{
    Store& s = Open();
    constexpr int Each = 150;
    auto coming = std::async(std::launch::async, Together<std::function<int(int)>>, 3, [&](int) {
        for (std::size_t n = 0; n < Each; ++n)
            s.Keep(NewReport{"s", "", "", "", std::string(n % 5 * 50'000, 'x')});
        return 0;
    });
    ReportFilter filter{"", "", "", 0, 0, 0, 0, 3};
    int seen = 0;
    for (bool isLast = false; !isLast;) {
        isLast = coming.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        for (auto page = s.Reports(filter); !page.empty(); page = s.Reports(filter)) {
            seen += static_cast<int>(page.size());
            filter.afterId = page.back().id;
        }
    }
    EXPECT_EQ(seen, 3 * Each);
}

TEST_F(StoreTest, VerdictsAreOfTheNewestRequirementsFirst)
{
    Store& s = Open();
    std::vector<std::int64_t> ids;
    for (int i = 0; i < 3; ++i)
        ids.push_back(Upload({"s", "r", "u", "m", Told({i})}));
    const auto keep = [&](auto id, auto total, auto lines) {
        s.Keep(NewVerdict{id, s.NewestSet("r")->id, "", total, lines});
    };
    for (const char* text : {"1", "2"}) {
        s.Publish("r", text, "");
        for (const std::int64_t id : ids)
            keep(id, id == ids[1] ? "fail" : "unknown", text);
    }
    keep(ids[2], "pass", "again");
    keep(1000, "pass", "its report has gone");
    std::string recent;
    s.ForEachRecentVerdict("r", 5, [&](const StoredVerdict& v) {
        recent += Told({v.report - ids[0], v.session, v.referrer, v.version, v.total, v.lines});
        return true;
    });
    EXPECT_EQ(recent,
              "2 s r 2 pass again 2 s r 1 unknown 1 1 s r 2 fail 2 1 s r 1 fail 1 0 s r 2 unknown 2 ");
    EXPECT_EQ(Told({s.VerdictsOf(ids[2]).at(0).lines, s.VerdictsOf(ids[2]).at(1).lines}), "again 1 ");
    const auto totals = [&](int count) { return s.RecentTotals({"r"}, count).at(0); };
    EXPECT_EQ(Told({totals(100).pass, totals(100).fail, totals(100).unknown}), "1 0 0 ");  // of one session
    keep(Upload({"t", "r", "", "", ""}), "fail", "");
    EXPECT_EQ(totals(2).pass, 1);
    EXPECT_EQ(totals(2).fail, 1);
    EXPECT_EQ(totals(1).pass, 0);
    EXPECT_EQ(Told({s.RecentReports("r", 3).size(), s.RecentReports("r", 3).at(2).body}), "3 1  ");
    const FullReport full = s.FindReport(ids[0]).value_or(FullReport{});
    EXPECT_EQ(Told({full.session, full.referrer, full.user, full.machine, full.body}), "s r u m 0  ");
    EXPECT_FALSE(s.FindReport(1000));
}

TEST_F(StoreTest, TotalsOfManyReferrersAreEachItsOwn)
{
    Store& s = Open();
    std::vector<std::string> referrers{"nobody"};
    for (int i = 0; i < 45; ++i) {
        referrers.push_back("r" + std::to_string(i));
        s.Publish(referrers.back(), "", "");
        for (int session = 0; session <= i % 3; ++session)
            s.Keep(NewVerdict{Upload({std::to_string(session), referrers.back(), "", "", ""}),
                              s.NewestSet(referrers.back())->id, "", "fail", "[]"});
    }
    const auto totals = s.RecentTotals(referrers, 1000);
    ASSERT_EQ(totals.size(), 46U);
    EXPECT_EQ(totals[0].fail, 0);
    for (std::size_t i = 0; i < 45; ++i)
        EXPECT_EQ(totals[i + 1].fail, static_cast<int>(i % 3) + 1) << referrers[i + 1];
}

TEST_F(StoreTest, ManyReportsAndVerdictsComeInOrderWhateverTheirSize)
{
    Store& s = Open();
    s.Publish("r", "", "");
    std::vector<std::int64_t> ids;
    for (std::size_t i = 0; i < 30; ++i) {
        const std::string large(i % 10 < 3 ? 3'000'000 : i, 'x');  // two of which are too much at once
        ids.push_back(Upload({"s", "r", "", "", large}));
        s.Keep(NewVerdict{ids.back(), s.NewestSet("r")->id, "", "pass", large});
    }
    std::vector<std::int64_t> newest(ids.rbegin(), ids.rend()), seen;
    const auto reports = [&](const auto& wanted, std::size_t most) {
        seen.clear();
        s.ForEachReport(wanted, [&](const FullReport& report) {
            const auto i = static_cast<std::size_t>(report.id - ids[0]);
            EXPECT_EQ(report.body.size(), i % 10 < 3 ? 3'000'000 : i) << "the body of report " << i;
            seen.push_back(report.id);
            return seen.size() < most;
        });
        return seen;
    };
    EXPECT_EQ(reports(ids, 100), ids);
    EXPECT_EQ(reports(newest, 100), newest);
    EXPECT_EQ(reports(ids, 2).size(), 2U);
    EXPECT_TRUE(reports(std::vector<std::int64_t>{}, 100).empty());
    seen.clear();
    s.ForEachRecentVerdict("r", 29, [&](const StoredVerdict& verdict) {
        EXPECT_EQ(verdict.lines.size(), s.FindReport(verdict.report)->body.size());
        seen.push_back(verdict.report);
        return true;
    });
    newest.pop_back();
    EXPECT_EQ(seen, newest);
    raw->Query("DELETE FROM report WHERE id = $1", {ids[4]});
    std::vector<std::int64_t> left, asked = ids;
    ids.erase(ids.begin() + 4);
    s.ForEachReport(asked, [&](const FullReport& report) { return left.push_back(report.id), true; });
    EXPECT_EQ(left, ids);
}

TEST_F(StoreTest, WhatIsDeletedTakesItsVerdictsAlongAndNoMoreThanAsked)
{
    Store& s = Open();
    s.Publish("r", "1", "");
    for (int i = 0; i < 12; ++i) {
        const std::int64_t id = Upload({i % 2 != 0 ? "odd" : "even", "r", "", i < 6 ? "m'" : "", "b"});
        s.Keep(NewVerdict{id, s.NewestSet("r")->id, "", "pass", "[]"});
    }
    raw->Query("UPDATE report SET received = id");
    const std::int64_t audited = Count("audit");
    const std::int64_t first = s.RecentReports("r", 12).back().id;
    DeletionEntry entry{"ann", "deleted", "odd"};
    const auto machine = [&](auto name) { return s.DeleteMachine(name, 3, nullptr); };
    const auto session = [&](auto name) { return s.DeleteSession(name, 2, &entry); };
    EXPECT_EQ(Told({s.DeleteOlder(first, 5, nullptr), s.DeleteOlder(first + 1, 5, nullptr), Count("report"),
                    Count("verdict")}),
              "0 1 11 11 ");
    EXPECT_EQ(Told({machine(""), machine("m'"), machine("m'"), Count("verdict")}),
              "0 3 2 6 ");  // none is not a machine
    EXPECT_EQ(Told({session("od"), session("odd"), session("odd"), Count("verdict")}), "0 2 1 3 ");
    EXPECT_EQ(Told({Count("audit") - audited, s.Notes(0, 1).at(0).subject, entry.reports}),
              "1 odd, 3 reports 3 ");
    EXPECT_EQ(Together(2, [&](int) { return s.DeleteOlder(Now(), 10, nullptr); }), 3);
    EXPECT_GT(Upload({"new", "", "", "", ""}), first + 11);  // an id never comes again
}

TEST_F(StoreTest, AccountsLogInsAndNotes)
{
    Store& s = Open();
    s.Keep(Account{"ann", "h1", Role::Editor}, "cli");
    s.Keep(Account{"Bob", "h2", Role::Reader}, "cli");
    EXPECT_EQ(Told({s.Accounts().at(0).name, s.Accounts().at(1).hash}), "Bob h1 ");
    for (const auto& [key, name, ends] : {std::tuple("over", "ann", Now()),
                                          {"long", "ann", Now() + Minute},
                                          {"end", "ann", Now() + Minute},
                                          {"bob", "Bob", Now() + Minute}})
        s.Keep(
            Login{key, name, Role::Reader, "token", ends, LoginKind::Program, name[0] == 'a' ? "h1" : "h2"});
    for (const auto& [name, hash] : {std::pair("ann", "h2"), {"ann", ""}, {"nobody", ""}})
        EXPECT_FALSE(s.Keep(Login{hash, name, Role::Reader, "", Now() + Minute, {}, hash}));
    const auto isIn = [&](const char* key) { return s.FindLogin(key).has_value(); };
    s.EndLogin("end");
    EXPECT_EQ(Told({Count("login_session"), isIn("over"), isIn("long"), isIn("end"), isIn("bob")}),
              "2 0 1 0 1 ");
    const Login found = s.FindLogin("long").value_or(Login{});
    EXPECT_EQ(
        Told({found.account, found.formToken, found.role == Role::Editor, found.kind == LoginKind::Program}),
        "ann token 1 1 ");
    raw->Execute("BEGIN; UPDATE account SET hash = 'other' WHERE name = 'Bob'");
    auto late = std::async(std::launch::async, [&] {
        return s.Keep(Login{"late", "Bob", Role::Reader, "", Now() + Minute, LoginKind::Browser, "h2"});
    });
    late.wait_for(std::chrono::milliseconds(100));
    raw->Execute("COMMIT");
    EXPECT_FALSE(late.get());  // the password that was right is another one by now
    s.Keep(Account{"ann", "h3", Role::Reader}, "cli");
    EXPECT_EQ(Told({isIn("long"), s.FindAccount("ann")->hash}), "0 h3 ");
    EXPECT_EQ(Told({s.RemoveAccount("Bob", "cli"), isIn("bob"), s.RemoveAccount("Bob", "cli")}), "1 0 0 ");
    for (const char* subject : {"1", "2", "3"})
        s.Note("ann", "did", subject);
    const auto notes = s.Notes(0, 2);
    EXPECT_EQ(Told({notes[0].subject, notes.at(1).subject, s.Notes(notes[1].id, 2).at(0).subject}), "3 2 1 ");
    raw->Query("UPDATE audit SET time = $1 WHERE subject < '3'", {Now() - 366 * 24 * 60 * Minute});
    s.Note("ann", "did", "4");
    EXPECT_EQ(Told({s.Notes(0, 2).at(0).subject, s.Notes(0, 2).at(1).subject}), "4 3 ");
    EXPECT_EQ(raw->Query("SELECT count(*) FROM audit WHERE subject < '3'")[0].Number(0), 0);
}

TEST_F(StoreTest, ChangesAndTheirAuditEntriesAreOneStep)
{
    Store& s = Open();
    s.KeepDraft("r", "1", 0, "ann");
    s.PublishDraft("r", 1, "bob");
    s.Publish("r", "2", "import", "cli");
    s.Publish("r", "2", "import", "cli");  // is there already
    s.KeepDraft("r", "3", 0, "ann");
    s.KeepDraft("r", "4", 0, "eve");  // somebody was faster
    s.DropDraft("r", 3, "bob");
    s.Keep(Account{"Ann", "h", Role::Reader}, "cli");
    s.RemoveAccount("Ann", "cli");
    std::string entries;
    for (const AuditLine& line : s.Notes(0, 20))
        entries = line.account + ": " + line.action + " " + line.subject + "\n" + entries;
    EXPECT_EQ(
        entries,
        "ann: saved draft r\nbob: published r, version 1\ncli: published r, version 2\nann: saved draft r\n"
        "bob: dropped draft r\ncli: account written Ann, reader\ncli: account removed Ann\n");
    raw->Execute("DROP TABLE audit");
    EXPECT_THROW(s.KeepDraft("new", "1", 0, "ann"), Fault);
    EXPECT_THROW(s.Publish("new", "1", "ann"), Fault);
    Upload({"s", "", "", "", ""});
    DeletionEntry entry{"ann", "deleted", "s"};
    EXPECT_THROW(s.DeleteSession("s", 1, &entry), Fault);
    EXPECT_FALSE(s.FindDraft("new")) << "a draft is saved without an entry";
    EXPECT_FALSE(s.NewestSet("new")) << "requirements are published without an entry";
    EXPECT_EQ(Count("report"), 1) << "a report is deleted without an entry";
}

TEST_F(StoreTest, DeletionsAndVerdictsMeetWithoutAnError)
{
    Store& s = Open();
    s.Publish("r", "1", "");
    const std::int64_t deleted = Upload({"s", "r", "", "", ""}), set = s.NewestSet("r")->id;
    raw->Begin();
    raw->Query("DELETE FROM report WHERE id = $1", {deleted});
    auto verdict = std::async(std::launch::async, [&] {
        s.Keep(NewVerdict{deleted, set, "", "pass", "[]"});
    });
    verdict.wait_for(std::chrono::milliseconds(300));
    raw->Execute("COMMIT");
    EXPECT_NO_THROW(verdict.get());
    EXPECT_EQ(Count("verdict"), 0);
    const std::int64_t used = Upload({"s", "r", "", "", ""});
    raw->Begin();
    raw->Query("SELECT 1 FROM report WHERE id = $1" + std::string(raw->ShareReports()), {used});
    auto deletion = std::async(std::launch::async, [&] { return s.DeleteSession("s", 5, nullptr); });
    deletion.wait_for(std::chrono::milliseconds(300));
    raw->Execute("COMMIT");
    EXPECT_EQ(deletion.get(), 1) << "a report that a verdict uses is passed over";
}

TEST_F(StoreTest, PagesForthStopAtAReportUnderWayAndKeepNobodyWaiting)
{
    Store& s = Open();
    if (!settings.database.starts_with("postgresql:"))
        return;  // where one report is stored at a time
    const auto seen = [&] {
        std::string sessions;
        for (const ReportLine& line : s.Reports({"", "", "", 0, 0, 0, 0, 10}))
            sessions += line.session;
        return sessions;
    };
    Upload({"a", "", "", "", ""});
    EXPECT_EQ(seen(), "a");
    raw->Execute(
        "BEGIN; INSERT INTO report (session, referrer, \"user\", received, body) VALUES ('b', '', '', 1, "
        "'')");
    auto pages = std::async(std::launch::async, seen);
    Upload({"c", "", "", "", ""});
    EXPECT_EQ(pages.get(), "a");
    EXPECT_EQ(seen(), "a") << "b would be missed";
    raw->Execute("COMMIT");
    EXPECT_EQ(seen(), "abc");
}

/// A connection that only exists.
class NoConnection : public SqlConnection {
public:
    void Execute(const std::string&) override {}
    void Begin() override {}
    bool IsBroken() override { return false; }
    bool IsWritable() override { return true; }
    std::size_t LargeRowsAtOnce() const override { return 1; }
    DatabaseSize Size() override { return {}; }
    std::span<const char* const> Migrations() const override { return {}; }
    int Version() override { return 0; }
    void SetVersion(int) override {}

protected:
    SqlRows Run(const std::string&, const std::vector<SqlValue>&) override { return {}; }
};

TEST(SqlPool, WaitsForALentConnectionWhereNoOtherCanBeOpened)
{
    std::atomic<int> opened = 0;
    SqlPool pool(
        [&]() -> std::unique_ptr<SqlConnection> {
            if (++opened > 2)
                throw Fault(503, "too many");
            return std::make_unique<NoConnection>();
        },
        8);
    EXPECT_EQ(Together(8,
                       [&](int) {
                           for (int i = 0; i < 20; ++i) {
                               const auto lease = pool.Borrow();
                               std::this_thread::sleep_for(std::chrono::milliseconds(1));
                           }
                           return 1;
                       }),
              8);
    SqlPool closed([]() -> std::unique_ptr<SqlConnection> { throw Fault(503, "closed"); }, 8);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 2; ++i)
        EXPECT_THROW(closed.Borrow(), Fault);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5)) << "nobody will return one";
}

TEST_F(StoreTest, ConnectionsKeepWhatIsPromised)
{
    if (settings.database.starts_with("postgresql:")) {
        PostgresConnection connection(settings.database, PostgresConnection::Patience::Request);
        EXPECT_EQ(connection.Query("SHOW statement_timeout")[0].Text(0), "10s");
        return;
    }
    for (const auto& [durability, level] : {std::pair{"normal", 1}, {"full", 2}}) {
        settings.durability = durability;
        EXPECT_EQ(OpenForMigration(settings)->Query("PRAGMA synchronous")[0].Number(0), level);
    }
    EXPECT_EQ(raw->Query("PRAGMA secure_delete")[0].Number(0), 1);
}

TEST_F(StoreTest, WhatIsLookedForHasAnIndex)
{
    Open();
    if (settings.database.starts_with("postgresql:"))
        return;  // which goes by what the tables hold
    const std::string verdicts = "SELECT report, requirement_set, total FROM verdict WHERE ";
    for (const auto& [sql, index] :
         {std::pair{"referrer = 1 ORDER BY report DESC, requirement_set DESC LIMIT 9", "verdict_by_referrer"},
          {"total = 'pass' AND report < 9 ORDER BY report DESC", "verdict_by_total"},
          {"total = 'pass' AND referrer = 1 AND report < 9 ORDER BY report DESC", "verdict_by_both"}}) {
        const SqlRows plan = raw->Query("EXPLAIN QUERY PLAN " + verdicts + sql);
        EXPECT_EQ(plan.size(), 1U) << sql;  // nothing is sorted
        EXPECT_NE(plan[0].Text(3).find(std::string("COVERING INDEX ") + index), std::string::npos) << sql;
    }
}

TEST_F(StoreTest, TextsComeBackAsTheyAre)
{
    Store& s = Open();
    const std::string large = "'\"\\%_$1?;--\n\t" + std::string(2'000'000, 'x') + "é€😀";
    for (const std::string& text : {std::string(), large}) {
        const FullReport report =
            s.FindReport(Upload({"s'\"é", "r", text, text, text})).value_or(FullReport{});
        EXPECT_TRUE(report.body == text && report.machine == text && report.user == text);
    }
    EXPECT_EQ(s.DeleteMachine(large, 5, nullptr), 1);
    for (const std::string& text : {std::string("a\0b", 3), std::string("\xff")}) {
        EXPECT_THROW(s.NewestReport(text), Fault);
        EXPECT_THROW(s.Publish("r", text, ""), Fault);
    }
    EXPECT_EQ(s.Publish("r", "fine", ""), 1);
}

TEST_F(StoreTest, AnOlderDatabaseComesToTheNewestVersionWithItsData)
{
    raw->Execute(raw->Migrations()[0]);
    raw->SetVersion(1);
    raw->Execute(
        "INSERT INTO referrer (name) VALUES ('other'), ('r');"
        "INSERT INTO requirement_set (referrer, version, published, text) VALUES (2, 1, 5, '{}');"
        "INSERT INTO report (session, referrer, \"user\", received, body) VALUES ('s', 'r', '', 6, 'b');"
        "INSERT INTO verdict (report, requirement_set, judged, item, total, lines) VALUES (1, 1, 7, 'i', "
        "'fail', '[]')");
    EXPECT_THROW(OpenStore(settings), std::runtime_error);
    Together(4, [&](int) { return Migrate(*OpenForMigration(settings)); });
    Store& s = Open();
    EXPECT_EQ(s.VerdictsOf(1).at(0).total, "fail");
    EXPECT_EQ(s.RecentTotals({"r"}, 5).at(0).fail, 1);
    EXPECT_EQ(Told({s.FindReport(1)->body, s.NewestSet("r")->published}), "b 5 ");
    EXPECT_EQ(s.Publish("r", "2", "ann"), 2);
    raw->SetVersion(4);
    EXPECT_THROW(Migrate(*raw), std::runtime_error);
    EXPECT_THROW(OpenStore(settings), std::runtime_error);
}

}  // namespace

}  // namespace kel::server
