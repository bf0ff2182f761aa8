#include <gtest/gtest.h>

#include "service/AnalysisRequest.h"
#include "service/GroupListRequest.h"
#include "service/SystemInformationRequest.h"
#include "service/Utf8.h"
#include "support/TestSession.h"

namespace kel {
namespace {

TEST(Requests, FillInTheirTemplates)
{
    test::TestSession session;
    session.sessionID = L"s s";
    session.wanted.Assign(L"1", L"");
    session.values.AddValue(1, L"a&b<c");

    AnalysisRequest analysis;
    analysis.SetItemID(L"item^message_format");
    analysis.SetMessageFormat(L"xml");
    analysis.SetFormatVersion(L"1.0");
    EXPECT_EQ(analysis.Body(),
              L"<System><SessionID>s s</SessionID><ItemID>itemxml</ItemID><UserID>user</UserID>"
              L"<Format>xml</Format><Schema>1.0</Schema></System>");

    const SystemInformationRequest information;
    EXPECT_EQ(information.Verb() + L" " + information.Path(),
              L"POST /SystemInformation/?refid=referrer&sessid=s%20s");
    EXPECT_EQ(
        information.Body(),
        L"<SystemInformation><Data>&lt;groups&gt;&lt;group index=\"0\" id=\"1\"&gt;&lt;value&gt;a&amp;amp;b"
        L"&amp;lt;c&lt;/value&gt;&lt;/group&gt;&lt;/groups&gt;  </Data></SystemInformation>");
}

TEST(Requests, EncodeControlCharactersAndBlanksOfIdsOnly)
{
    test::TestSession session;
    session.referrerID = std::wstring(L"a\r\nX: 1\t\x1f \x7f\0!%?#&/\u00e9", 19);
    EXPECT_EQ(AnalysisRequest().Path(), L"/service/Analysis/a%0D%0AX:%201%09%1F%20%7F%00!%?#&/\u00e9");
    EXPECT_TRUE(GroupListRequest().Path().starts_with(L"/Data/Service.svc/Group/list?refid=a%0D%0AX:%201"));
    EXPECT_TRUE(SystemInformationRequest().Path().starts_with(L"/SystemInformation/?refid=a%0D%0AX:%201"));
}

TEST(Utf8, ConvertsBothWaysAndReplacesWhatIsMalformed)
{
    const std::pair<const wchar_t*, const char*> rows[] = {
        {L"", ""}, {L"\u00e9\u20ac", "\xc3\xa9\xe2\x82\xac"}, {L"\xd83d\xde00", "\xf0\x9f\x98\x80"}};
    for (const auto& [wide, bytes] : rows) {
        EXPECT_EQ(ToUtf8(wide), bytes);
        EXPECT_EQ(FromUtf8(bytes), wide);
    }
    EXPECT_EQ(ToUtf8(L"a\xd83d"), "a\xef\xbf\xbd");
    EXPECT_EQ(FromUtf8("a\xff!"), L"a\ufffd!");
    EXPECT_EQ(FromUtf8(std::string_view("a\0b", 3)).size(), 3U);
}

}  // namespace
}  // namespace kel
