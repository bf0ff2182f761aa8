#include "run/System.h"

#include <gmock/gmock.h>
#include <boost/make_shared.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <regex>
#include <stdexcept>
#include <thread>

#include "diag/Log.h"
#include "run/ConfigurationTags.h"
#include "run/store/XMLReport.h"
#include "service/ExchangeLimits.h"
#include "service/RunWithin.h"
#include "support/FakeWmi.h"
#include "support/LogCapture.h"
#include "support/TestSession.h"
#include "values/Exists.h"
#include "values/Size.h"

namespace kel {
namespace {

using namespace std::chrono_literals;

TEST(ConfigurationTags, TakesTheFirstElementAndLogsTheSearch)
{
    const std::tuple<const wchar_t*, std::wstring, std::vector<std::wstring>> rows[] = {
        {L"..<a>x</a><a>y</a>", L"x", {L"TRACE len= 3", L"TRACE s= 2", L"TRACE e= 6", L"TRACE value= x"}},
        {L"<a></a>", L"", {L"TRACE len= 3", L"TRACE s= 0", L"TRACE e= 3", L"TRACE value= "}},
        {L"</a><a>x", L"", {L"TRACE value= "}},
        {L"<A>x</A>", L"", {L"TRACE len= 3", L"TRACE s= -1", L"TRACE e= 0", L"TRACE value= "}},
    };
    for (const auto& [text, value, lines] : rows) {
        const test::LogCapture log(3);
        std::wstring found = L"left over";
        EXPECT_EQ(ExtractTag(text, L"<a>", L"</a>", found), !value.empty()) << text;
        EXPECT_EQ(found, value);
        EXPECT_EQ(log.Lines(), lines);
    }
}

TEST(System, StartsWithOnlyARandomSessionAndReadsItsConfiguration)
{
    const System first;
    System system;
    const std::wregex form(L"[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
    EXPECT_TRUE(std::regex_match(first.SessionID(), form));
    EXPECT_NE(first.SessionID(), system.SessionID());
    EXPECT_EQ(first.ReferrerID() + first.UserID(), L"");
    EXPECT_EQ(&Session::Current(), &system);
    EXPECT_FALSE(system.IsDebug());

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

TEST(System, UploadsOnceWhenAPageCallsInWhileADetectorWaits)
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
    EXPECT_EQ(system.Values().GetValue(SystemValueID(GroupID(71206))).Text(), L"let in");
    system.Detect();
    EXPECT_EQ(system.Values().GetValue(SystemValueID(GroupID(71206))).Text(), L"let in");
    const auto lines = log.Lines();
    EXPECT_EQ(std::ranges::count(lines, L"MARK Entering: kel::XMLReport::GetReport"), 1);
    EXPECT_GT(std::ranges::find(lines, L"MARK Entering: kel::XMLReport::GetReport"),
              std::ranges::find(lines, L"MARK Entering: kel::SCSI::Detect"));
}

TEST(System, KeepsAnUploadDueWhenItCouldNotBegin)
{
    const auto mayEnd = std::make_shared<std::atomic<bool>>(false);
    const auto occupy = [mayEnd](InternetSession&) {
        while (!*mayEnd)
            std::this_thread::sleep_for(1ms);
    };
    for (int count = 0; count < ExchangeLimits::AtOnce; ++count)
        RunWithin(0ms, occupy);
    const auto canBegin = [&occupy] {
        try {
            return RunWithin(5s, occupy) == nullptr;
        } catch (const ExchangeNotStarted&) {
            return false;
        }
    };
    System system;
    test::FakeWmiData data;
    const test::FakeWmi fake(data);
    const test::LogCapture log(LogMark);
    const auto uploads = [&log, &system] {
        system.Detect();
        return std::ranges::count(log.Lines(), L"MARK Entering: kel::XMLReport::GetReport");
    };
    EXPECT_EQ(uploads(), 1);
    EXPECT_EQ(uploads(), 2);
    *mayEnd = true;
    for (int milliseconds = 0; milliseconds < 5000 && !canBegin(); ++milliseconds)
        std::this_thread::sleep_for(1ms);
    EXPECT_EQ(uploads(), 3);
    EXPECT_EQ(uploads(), 3);
}

TEST(RequestInterval, LetsTenMinutesPassUnlessReset)
{
    RequestInterval upload;
    EXPECT_TRUE(upload.IsDue(0));
    upload.MarkSent(1000);
    EXPECT_FALSE(upload.IsDue(1599));
    EXPECT_TRUE(upload.IsDue(1600));
    EXPECT_FALSE(upload.IsDue(0));  // the clock was put back
    upload.Reset();
    EXPECT_TRUE(upload.IsDue(1001));
}

TEST(WantedGroups, AreSplitAndRememberedForTheirReferrer)
{
    WantedGroups wanted;
    EXPECT_TRUE(wanted.IsDue(L"", 1000));
    const std::pair<const wchar_t*, const char*> rows[] = {
        {L"1|2,3", "01110000"}, {L"|,7||", "00000001"}, {L"", "00000000"}, {L"<html>", "10000000"}};
    for (const auto& [answer, expected] : rows) {
        wanted.Assign(answer, L"r", true);
        for (unsigned number = 0; number < 8; ++number)
            EXPECT_EQ(wanted.Contains(GroupID(number)), expected[number] == '1') << answer;
    }
    EXPECT_FALSE(wanted.IsDue(L"r", 1000));
    EXPECT_TRUE(wanted.IsDue(L"other", 1000));
    wanted.Assign({2, 1});
    EXPECT_TRUE(wanted.Contains(GroupID(1)));
    EXPECT_TRUE(wanted.IsDue(L"r", 1000)) << "a program's own groups are nobody's answer";
}

TEST(WantedGroups, AreDueAgainWithoutAnAnswer)
{
    WantedGroups wanted;
    wanted.Assign(L"", L"r", false);
    EXPECT_TRUE(wanted.IsDue(L"r", 1000)) << "the request could not begin";
    wanted.MarkSent(1000);
    EXPECT_FALSE(wanted.IsDue(L"r", 1599));
    EXPECT_TRUE(wanted.IsDue(L"r", 1600));
    wanted.Reset();
    EXPECT_TRUE(wanted.IsDue(L"r", 1001));
    wanted.Assign(L"1", L"r", true);
    wanted.Reset();
    EXPECT_FALSE(wanted.IsDue(L"r", 9000)) << "the service has answered";
}

TEST(System, AsksForGroupsAgainWithoutAnAnswerAndForAnotherReferrer)
{
    System system;
    test::FakeWmiData data;
    const test::FakeWmi fake(data);
    const test::LogCapture log(LogTrace);
    const auto requests = [&log, &system] {
        system.Detect();
        return std::ranges::count_if(
            log.Lines(), [](const std::wstring& line) { return line.starts_with(L"TRACE Request: GET "); });
    };
    EXPECT_EQ(requests(), 1);  // the proxy of the tests refuses
    EXPECT_EQ(requests(), 1);
    system.SetReferrerID(L"");
    EXPECT_EQ(requests(), 1);
    system.SetReferrerID(L"product");
    EXPECT_EQ(requests(), 2);
    system.SetReferrerID(L"product");
    EXPECT_EQ(requests(), 3);
    system.SetSessionID(L"session");
    EXPECT_EQ(requests(), 4);
    EXPECT_EQ(requests(), 4);
}

/// The store's content as "id[index]=text" items, in order.
std::wstring Content(const SystemValues& values)
{
    std::wstring content;
    for (const SystemValue& value : values)
        content += value.ID().Group().Text() + L"[" + std::to_wstring(value.ID().Index()) + L"]=" +
                   value.Text() + L";";
    return content;
}

SystemValueID ID(unsigned number, int index = 0)
{
    return SystemValueID(GroupID(number), index);
}

TEST(GroupID, ComparesByTheNumberReadFromItsText)
{
    const std::pair<const wchar_t*, unsigned> rows[] = {
        {L"071060", 71060}, {L" 71060x", 71060}, {L"abc", 0},
        {L"", 0},           {L"0x10", 0},        {L"4294967296", 4294967295U},
    };
    for (const auto& [text, number] : rows) {
        EXPECT_EQ(GroupID(std::wstring(text)), GroupID(number)) << text;
        EXPECT_EQ(GroupID(std::wstring(text)).Text(), text);
    }
}

TEST(SystemValues, KeepsTheFirstPlaceOfAnIdAndNamesAMissingOne)
{
    SystemValues values;
    values.AddValue(ID(2), std::wstring(L"two"));
    values.AddValue(ID(1), Size(1024));
    values.AddValue(ID(1, 5), boost::make_shared<const Exists>(true));
    values.AddValue(2, L"again");
    EXPECT_EQ(Content(values), L"2[0]=again;1[0]=1.0 KB;1[5]=Yes;");
    EXPECT_FALSE(values.ReplaceValue(SystemValue(ID(9), boost::make_shared<const Exists>(true))));
    EXPECT_THROW(values.AddValue(ID(1), boost::shared_ptr<const Value>()), std::invalid_argument);
    EXPECT_EQ(values.TryGetValue(ID(2, 1)), nullptr);
    EXPECT_THAT([&] { values.GetValue(ID(71060)); },
                testing::ThrowsMessage<std::exception>("Value 71060 not present."));
}

TEST(SystemValues, ReadsGroupsTexts)
{
    // The fuzz test has the rules; these are the cases that a reader would not expect.
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"x<groups><group index='3' id='1'><value>a &lt; b</value></group>", L"1[3]=a &lt; b;"},
        {L"<groups><group id = \"12x\" index=x><value> v </value></group>", L"12x[0]= v ;"},
        // An empty id adds nothing and the next group follows.
        {L"<groups><group id=\"\"></group><group id=\"2\"><value>b</value></group>", L"2[0]=b;"},
        // A group without a value takes the next one's.
        {L"<groups><group id=\"1\"></group><group id=\"2\"><value>b</value></group>", L"1[0]=b;2[0]=b;"},
        // A group without an id takes one from the text before it, but not from the text after its end.
        {L"<groups>id=7 index=1<value>v</value><group ></group>", L"7[1]=v;"},
        {L"<groups><group x=\"1\"></group><group id=\"2\"></group>", L"2[0]=;"},
    };
    for (const auto& [text, content] : rows) {
        SystemValues values;
        values.AddValues(text);
        EXPECT_EQ(Content(values), content) << text;
    }
    const test::LogCapture log(3);
    SystemValues().AddValues(L"<groups><group id=\"1\"><value>a</value></group>");
    EXPECT_THAT(log.Lines(),
                testing::ElementsAre(L"TRACE values = <groups><group id=\"1\"><value>a</value></group>",
                                     L"TRACE pos = 8", L"TRACE id pos= 15", L"TRACE id = 1 a",
                                     L"TRACE Adding value: a to 1", L"TRACE pos = -1"));
}

TEST(SystemValues, ReadsHugeTextsInReasonableTime)
{
    // Each of these texts once made a search scan the whole rest for every group.
    const std::wstring blanks(500000, L'=');
    std::wstring many = L"<groups>", valued = many;
    for (int i = 0; i < 20000; ++i)
        many += L"<group ></group>";
    for (int i = 1; i <= 2000; ++i)
        valued += L"<group id=" + std::to_wstring(i) + L"></group>";
    for (const std::wstring& text :
         {many + L"index", many + L"id" + blanks, valued + L"<value>" + blanks + L"</value>"}) {
        SystemValues values;
        const ULONGLONG start = GetTickCount64();
        values.AddValues(text);
        EXPECT_LT(GetTickCount64() - start, 5000U);
        EXPECT_EQ(std::distance(values.begin(), values.end()), text.starts_with(many) ? 0 : 2000);
    }
}

class Unprintable : public Value {
public:
    const wchar_t* ToString() const override { throw std::runtime_error("no text"); }
};

TEST(XMLReport, WritesWantedValuesInTheStoresOrder)
{
    test::TestSession session;
    const auto report = [&session] {
        std::wstring text = L"left over";
        XMLReport(session.values).GetReport(XMLReport::StandardOption, text);
        return text;
    };
    EXPECT_EQ(report(), L"<groups></groups>  ");
    session.wanted.Assign(L"5|7,0abc,73390", L"referrer", true);
    session.values.AddValue(7, L"a<b&c>\"'");
    session.values.AddValue(6, L"not wanted");
    session.values.AddValue(73390, L"for the page alone");
    session.values.AddValue(SystemValueID(GroupID(std::wstring(L"abc")), 2), std::wstring(L"by number 0"));
    session.values.AddValue(ID(5, -1), boost::make_shared<const Unprintable>());
    for (const unsigned fixed : {71466U, 71207U, 71465U, 71206U})  // the last one is not
        session.values.AddValue(fixed, L"x");
    EXPECT_EQ(report(),
              L"<groups><group index=\"0\" id=\"7\"><value>a&lt;b&amp;c&gt;\"'</value></group>"
              L"<group index=\"2\" id=\"abc\"><value>by number 0</value></group>"
              L"<group index=\"-1\" id=\"5\"></group>"
              L"<group index=\"0\" id=\"71466\"><value>x</value></group>"
              L"<group index=\"0\" id=\"71207\"><value>x</value></group>"
              L"<group index=\"0\" id=\"71465\"><value>x</value></group></groups>  ");
}

}  // namespace
}  // namespace kel
