#include "run/System.h"

#include <gtest/gtest.h>

#include <regex>

#include "diag/Log.h"
#include "run/ConfigurationTags.h"
#include "support/LogCapture.h"

namespace kel {
namespace {

TEST(ConfigurationTags, TakesTheFirstElementAndLogsTheSearch)
{
    const struct {
        const wchar_t* text;
        const wchar_t* value;
        std::vector<std::wstring> lines;
    } rows[] = {
        {L"..<a>x</a><a>y</a>", L"x", {L"len= 3", L"s= 2", L"e= 6", L"value= x"}},
        {L"<b><a> &lt;\t</a>", L" &lt;\t", {L"len= 3", L"s= 3", L"e= 12", L"value=  &lt;\t"}},
        {L"<a></a>", L"", {L"len= 3", L"s= 0", L"e= 3", L"value= "}},
        {L"nothing", L"", {L"len= 3", L"s= -1", L"e= 0", L"value= "}},
        {L"</a><a>x", L"", {L"value= "}},
        {L"<A>x</A>", L"", {L"len= 3", L"s= -1", L"e= 0", L"value= "}},
    };
    for (const auto& row : rows) {
        const test::LogCapture log(3);
        std::wstring value = L"left over";
        EXPECT_EQ(ExtractTag(row.text, L"<a>", L"</a>", value), *row.value != L'\0') << row.text;
        EXPECT_EQ(value, row.value);
        const std::vector<std::wstring> lines = log.Lines();
        ASSERT_EQ(lines.size(), row.lines.size()) << row.text;
        for (std::size_t i = 0; i < lines.size(); ++i)
            EXPECT_TRUE(lines[i].ends_with(row.lines[i])) << lines[i].c_str();
    }
}

TEST(System, StartsWithARandomSessionOnly)
{
    const System first, second;
    EXPECT_TRUE(std::regex_match(
        first.SessionID(),
        std::wregex(L"[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}")));
    EXPECT_NE(first.SessionID(), second.SessionID());
    EXPECT_EQ(first.ReferrerID() + first.UserID(), L"");
    EXPECT_FALSE(first.IsDebug());
    EXPECT_EQ(System::Version(), L"4.5.1.0");
    EXPECT_EQ(&Session::Current(), &second);
}

TEST(System, SettersKeepOldIdentifiersButClearUserAndDebug)
{
    System system;
    system.SetReferrerID(L"r");
    system.SetSessionID(L"s");
    system.SetUserID(L"u");
    system.SetDebug(L"1");
    EXPECT_TRUE(system.IsDebug());
    system.SetReferrerID(L"");
    system.SetSessionID(L"");
    system.SetUserID(L"");
    EXPECT_EQ(system.ReferrerID() + L"|" + system.SessionID() + L"|" + system.UserID(), L"r|s|");
    for (const wchar_t* off : {L"0", L""}) {
        system.SetDebug(off);
        EXPECT_FALSE(system.IsDebug());
    }
}

TEST(System, ReadsItsConfiguration)
{
    System system;
    system.SetUserID(L"kept");
    system.SetConfiguration(
        L"<x><referrer_id>r</referrer_id><logging>9</logging><debug>yes</debug>"
        L"<user_id></user_id><session_id>s</session_id></x>");
    EXPECT_EQ(system.ReferrerID() + L"|" + system.SessionID() + L"|" + system.UserID(), L"r|s|kept");
    EXPECT_TRUE(system.IsDebug());
    EXPECT_EQ(Log::Instance().GetLevel(), 7);
    system.SetConfiguration(L"<user_id>a</user_id><user_id>b</user_id><logging>x</logging>");
    EXPECT_EQ(system.UserID(), L"a");
    EXPECT_EQ(Log::Instance().GetLevel(), 0);
    const test::LogCapture log(3);
    system.SetConfiguration(L"");
    EXPECT_EQ(log.Lines(), std::vector<std::wstring>{L"TRACE config= "});
}

TEST(UploadInterval, LetsTenMinutesPassUnlessReset)
{
    UploadInterval upload;
    EXPECT_TRUE(upload.IsDue(0));
    upload.MarkUploaded(1000);
    EXPECT_FALSE(upload.IsDue(1000));
    EXPECT_FALSE(upload.IsDue(1599));
    EXPECT_TRUE(upload.IsDue(1600));
    EXPECT_FALSE(upload.IsDue(0));  // the clock was put back
    upload.Reset();
    EXPECT_TRUE(upload.IsDue(1001));
}

TEST(WantedGroups, AreSplitAndRememberedForTheirReferrer)
{
    const struct {
        const wchar_t* answer;
        std::vector<unsigned> in, out;
    } rows[] = {
        {L"1|2,3", {1, 2, 3}, {0, 12}},
        {L"|,7||", {7}, {0}},
        {L"", {}, {0}},
        {L"<html>", {0}, {1}},
    };
    WantedGroups wanted;
    EXPECT_FALSE(wanted.IsFetchedFor(L""));
    for (const auto& row : rows) {
        wanted.Assign(row.answer, L"r");
        for (const unsigned number : row.in)
            EXPECT_TRUE(wanted.Contains(GroupID(number))) << row.answer << number;
        for (const unsigned number : row.out)
            EXPECT_FALSE(wanted.Contains(GroupID(number))) << row.answer << number;
    }
    EXPECT_TRUE(wanted.IsFetchedFor(L"r"));
    EXPECT_FALSE(wanted.IsFetchedFor(L"other"));
}

}  // namespace
}  // namespace kel
