// Accounts, log-ins and the audit in the store.
#include "server/store/Accounts.h"

#include "server/store/Audit.h"
#include "tests/server/StoreTest.h"

namespace kel::server {

namespace {

TEST_F(StoreTest, LogInsNeedTheAccountsPresentPassword)
{
    Accounts accounts(Open());
    accounts.Save({"ann", "h1", Role::Editor}, "cli");
    accounts.Save({"Bob", "h2", Role::Reader}, "cli");
    EXPECT_EQ(Audit(*database).Entries({.count = 1}).at(0).subject, "Bob, reader");
    const auto add = [&](const char* key, const char* name, std::int64_t ends, const char* hash) {
        return accounts.AddLogin({key, name, Role::Reader, "token", ends, LoginKind::Program, hash});
    };
    EXPECT_TRUE(add("over", "ann", Now(), "h1"));
    EXPECT_TRUE(add("valid", "ann", Now() + Minute, "h1"));
    EXPECT_FALSE(add("other's", "ann", Now() + Minute, "h2"));
    EXPECT_FALSE(add("nobody's", "nobody", Now() + Minute, ""));
    EXPECT_EQ(CountRows("login_session"), 1) << "the one that is over stays";
    EXPECT_FALSE(accounts.FindLogin("over"));
    const auto found = accounts.FindLogin("valid");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->role, Role::Editor) << "the account's role counts";
    raw->Execute("BEGIN; UPDATE account SET hash = 'other' WHERE name = 'Bob'");
    auto late = std::async(std::launch::async, [&] { return add("late", "Bob", Now() + Minute, "h2"); });
    late.wait_for(std::chrono::milliseconds(100));
    raw->Execute("COMMIT");
    EXPECT_FALSE(late.get()) << "the password changed meanwhile";
    EXPECT_TRUE(accounts.Remove("Bob", "cli"));
    EXPECT_EQ(Audit(*database).Entries({.count = 1}).at(0).action, "account removed");
}

TEST_F(StoreTest, TheAuditGoesBackAYear)
{
    Audit audit(Open());
    for (const char* subject : {"1", "2", "3"})
        audit.Add("ann", "did", subject);
    const auto newest = audit.Entries({.count = 2});
    ASSERT_EQ(newest.size(), 2U);
    EXPECT_EQ(newest[0].subject, "3");
    EXPECT_EQ(newest[1].subject, "2");
    EXPECT_EQ(audit.Entries({.beforeId = newest[1].id, .count = 2}).at(0).subject, "1");
    raw->Query("UPDATE audit SET time = $1 WHERE subject < '3'", {Now() - 366 * 24 * 60 * Minute});
    audit.Add("ann", "did", "4");
    EXPECT_EQ(CountRows("audit"), 2);
    EXPECT_EQ(audit.Entries({.count = 2}).at(1).subject, "3");
}

}  // namespace

}  // namespace kel::server
