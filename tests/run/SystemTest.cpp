#include "run/System.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <regex>

#include "diag/Log.h"
#include "run/ConfigurationTags.h"
#include "support/FakeWmi.h"
#include "support/LogCapture.h"

namespace kel {
namespace {

TEST(ConfigurationTags, TakesTheFirstElementAndLogsTheSearch)
{
    const std::tuple<const wchar_t*, std::wstring, const wchar_t*> rows[] = {
        {L"..<a>x</a><a>y</a>", L"x", L"len= 3;s= 2;e= 6;value= x;"},
        {L"<b><a> &lt;\t</a>", L" &lt;\t", L"len= 3;s= 3;e= 12;value=  &lt;\t;"},
        {L"<a></a>", L"", L"len= 3;s= 0;e= 3;value= ;"},
        {L"</a><a>x", L"", L"value= ;"},
        {L"<A>x</A>", L"", L"len= 3;s= -1;e= 0;value= ;"},
    };
    for (const auto& [text, value, logged] : rows) {
        const test::LogCapture log(3);
        std::wstring found = L"left over", lines;
        EXPECT_EQ(ExtractTag(text, L"<a>", L"</a>", found), !value.empty()) << text;
        EXPECT_EQ(found, value);
        for (const std::wstring& line : log.Lines())
            lines += line.substr(std::wstring(L"TRACE ").size()) + L";";
        EXPECT_EQ(lines, logged);
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
    EXPECT_EQ(&Session::Current(), &second);
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
    system.SetConfiguration(L"<user_id>a</user_id><debug>0</debug><logging>x</logging>");
    EXPECT_EQ(system.UserID(), L"a");
    EXPECT_FALSE(system.IsDebug());
    EXPECT_EQ(Log::Instance().GetLevel(), 0);
    const test::LogCapture log(3);
    system.SetConfiguration(L"");
    EXPECT_THAT(log.Lines(), testing::ElementsAre(L"TRACE config= "));
}

TEST(System, UploadsOnceThoughAPageIsLetInWhileADetectorWaits)
{
    System system;
    test::FakeWmiData data;
    data.whileAsked = [&system] {
        system.SetUserID(L"let in");
        system.Detect();
    };
    const test::FakeWmi fake(data);
    const test::LogCapture log(LogMark);
    system.Detect();
    system.Detect();
    EXPECT_EQ(system.Values().GetValue(SystemValueID(GroupID(71206))).Text(), L"let in");
    const auto lines = log.Lines();
    EXPECT_EQ(std::ranges::count(lines, L"MARK Entering: kel::XMLReport::GetReport"), 1);
    EXPECT_GT(std::ranges::find(lines, L"MARK Entering: kel::XMLReport::GetReport"),
              std::ranges::find(lines, L"MARK Entering: kel::SCSI::Detect"));
}

TEST(UploadInterval, LetsTenMinutesPassUnlessReset)
{
    UploadInterval upload;
    EXPECT_TRUE(upload.IsDue(0));
    upload.MarkUploaded(1000);
    EXPECT_FALSE(upload.IsDue(1599));
    EXPECT_TRUE(upload.IsDue(1600));
    EXPECT_FALSE(upload.IsDue(0));  // the clock was put back
    upload.Reset();
    EXPECT_TRUE(upload.IsDue(1001));
}

TEST(WantedGroups, AreSplitAndRememberedForTheirReferrer)
{
    const std::pair<const wchar_t*, std::vector<unsigned>> rows[] = {
        {L"1|2,3", {1, 2, 3}}, {L"|,7||", {7}}, {L"", {}}, {L"<html>", {0}}};
    WantedGroups wanted;
    EXPECT_FALSE(wanted.IsFetchedFor(L""));
    for (const auto& [answer, numbers] : rows) {
        wanted.Assign(answer, L"r");
        for (unsigned number = 0; number < 20; ++number)
            EXPECT_EQ(wanted.Contains(GroupID(number)), std::ranges::count(numbers, number) > 0) << answer;
    }
    EXPECT_TRUE(wanted.IsFetchedFor(L"r"));
    EXPECT_FALSE(wanted.IsFetchedFor(L"other"));
}

}  // namespace
}  // namespace kel
