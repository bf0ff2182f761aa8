// Published requirements and drafts in the store.
#include "server/base/Fault.h"
#include "server/store/Accounts.h"
#include "tests/server/StoreTest.h"

namespace kel::server {

namespace {

TEST_F(StoreTest, VersionsAscendAndRepeatedTextsAreNotPublished)
{
    RequirementSets sets(Open());
    EXPECT_FALSE(sets.Newest("r"));
    for (const auto& [text, version] : {std::pair{"a", 1}, {"a", 1}, {"b", 2}, {"a", 3}})
        EXPECT_EQ(sets.Publish("r", text, "ann", "ann"), version);
    EXPECT_EQ(sets.Text(sets.Versions("r").at(1).id), "b");
    EXPECT_LT(Now() - sets.Newest("r")->published, Minute);
    EXPECT_EQ(Together(8, [&](int i) { return sets.Publish("r", std::to_string(i), "", ""); }),
              4 + 5 + 6 + 7 + 8 + 9 + 10 + 11);
}

TEST_F(StoreTest, OneOfTwoEditorsWins)
{
    RequirementSets sets(Open());
    EXPECT_EQ(sets.SaveDraft("r", "mine", 0, "ann"), 1);
    EXPECT_EQ(sets.SaveDraft("r", "ours", 1, "ann"), 2);
    EXPECT_FALSE(sets.PublishDraft("r", 1, "ann")) << "revision 1 is out of date";
    EXPECT_EQ(sets.PublishDraft("r", 2, "ann"), 1);
    EXPECT_FALSE(sets.SaveDraft("r", "dead", 3, "ann")) << "a published draft cannot be changed";
    EXPECT_GT(sets.SaveDraft("r", "next", 0, "ann"), 2) << "a page from before would overwrite the new draft";
    EXPECT_EQ(Together(8, [&](int i) { return sets.SaveDraft("n", std::to_string(i), 0, "").has_value(); }),
              1);
    EXPECT_EQ(Together(8, [&](int) { return sets.PublishDraft("n", 1, "").has_value(); }), 1);
}

TEST_F(StoreTest, ChangesAndTheirAuditEntriesAreOneTransaction)
{
    RequirementSets sets(Open());
    Upload("s");
    sets.SaveDraft("old", "1", 0, "ann");
    Accounts accounts(*database);
    accounts.Save({"bob", "h", Role::Reader}, "cli");
    raw->Execute("DROP TABLE audit");
    EXPECT_THROW(sets.DropDraft("old", 1, "ann"), Fault);
    EXPECT_TRUE(sets.FindDraft("old")) << "a draft is dropped without an entry";
    EXPECT_THROW(accounts.Save({"eve", "h", Role::Editor}, "cli"), Fault);
    EXPECT_FALSE(accounts.Find("eve")) << "an account is written without an entry";
    EXPECT_THROW(accounts.Remove("bob", "cli"), Fault);
    EXPECT_TRUE(accounts.Find("bob")) << "an account is removed without an entry";
    EXPECT_THROW(sets.SaveDraft("new", "1", 0, "ann"), Fault);
    EXPECT_THROW(sets.Publish("new", "1", "ann", "ann"), Fault);
    DeletionEntry entry{"ann", "deleted", "s"};
    EXPECT_THROW(Reports(*database).DeleteSession("s", 1, &entry), Fault);
    EXPECT_FALSE(sets.FindDraft("new")) << "a draft is saved without an entry";
    EXPECT_FALSE(sets.Newest("new")) << "requirements are published without an entry";
    EXPECT_EQ(CountRows("report"), 1) << "a report is deleted without an entry";
}

}  // namespace

}  // namespace kel::server
