#include "run/store/SystemValues.h"

#include <gmock/gmock.h>
#include <boost/make_shared.hpp>

#include <algorithm>

#include "support/LogCapture.h"
#include "values/Exists.h"
#include "values/Size.h"

namespace kel {
namespace {

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
    EXPECT_EQ(GroupID(71060U).Text(), L"71060");
    EXPECT_FALSE(ID(1) == ID(1, 1));
}

TEST(SystemValues, KeepsTheFirstPlaceOfAnId)
{
    SystemValues values;
    values.AddValue(ID(2), std::wstring(L"two"));
    values.AddValue(ID(1), Size(1024));
    values.AddValue(ID(1, 5), boost::make_shared<const Exists>(true));
    values.AddValue(2, L"again");
    EXPECT_EQ(Content(values), L"2[0]=again;1[0]=1.0 KB;1[5]=Yes;");
    EXPECT_FALSE(values.ReplaceValue(SystemValue(ID(9), boost::make_shared<const Exists>(true))));
    EXPECT_THROW(values.AddValue(ID(1), boost::shared_ptr<const Value>()), std::invalid_argument);
}

TEST(SystemValues, NamesTheIdThatIsMissing)
{
    SystemValues values;
    values.AddValue(1, L"text");
    EXPECT_EQ(values.GetValue(ID(1)).Text(), L"text");
    EXPECT_EQ(values.TryGetValue(ID(1, 1)), nullptr);
    EXPECT_THAT([&] { values.GetValue(ID(71060)); },
                testing::ThrowsMessage<std::exception>("Value 71060 not present."));
}

TEST(SystemValues, ReadsGroupsTexts)
{
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"<group id=\"1\"><value>a</value></group>", L""},
        {L"<groups>", L""},
        {L"<Groups><group id=\"1\"><value>a</value></group></Groups>", L""},
        {L"x<groups><group index='3' id='1'><value>a &lt; b</value></group>", L"1[3]=a &lt; b;"},
        {L"<groups><group id=1 index=2><value></value></group></groups>", L"1[2]=;"},
        {L"<groups><group id = \"12x\" ><value> v </value></group>", L"12x[0]= v ;"},
        // An empty id adds nothing and the next group follows.
        {L"<groups><group id=\"\"></group><group id=\"2\"><value>b</value></group>", L"2[0]=b;"},
        // A group without a value takes the next one's.
        {L"<groups><group id=\"1\"></group><group id=\"2\"><value>b</value></group>", L"1[0]=b;2[0]=b;"},
        {L"<groups><group id=\"1\"><value>a</group>", L"1[0]=;"},
        {L"<groups><group id=\"1\"><value>a</value>", L""},
        // Without an id of its own, a group looks at the text before it, and after it only up to its end.
        {L"<groups>id=7 index=1<value>v</value><group ></group>", L"7[1]=v;"},
        {L"<groups><group x=\"1\"></group><group id=\"2\"></group>", L"2[0]=;"},
        {L"<groups><group id=\"1\" index=\"x\"></group>", L"1[0]=;"},
        {L"<groups><group id=\"1\"></group><group id=\"1\"><value>b</value></group>", L"1[0]=b;"},
        {L"<groups></group><group id=\"1\"><value>a</value></group>", L"1[0]=a;"},
    };
    for (const auto& [text, content] : rows) {
        SystemValues values;
        values.AddValues(text);
        EXPECT_EQ(Content(values), content) << text;
    }
}

TEST(SystemValues, LogsWhatItReads)
{
    const test::LogCapture log(3);
    SystemValues values;
    values.AddValues(L"<groups><group id=\"1\"><value>a</value></group>");
    EXPECT_THAT(log.Lines(),
                testing::ElementsAre(L"TRACE values = <groups><group id=\"1\"><value>a</value></group>",
                                     L"TRACE pos = 8", L"TRACE id pos= 15", L"TRACE id = 1 a",
                                     L"TRACE Adding value: a to 1", L"TRACE pos = -1"));
}

TEST(SystemValues, ReadsHugeTextsInReasonableTime)
{
    // Each text made a search of its own go through all the rest for every group.
    const std::wstring blanks(500000, L'=');
    std::wstring many = L"<groups>";
    for (int i = 0; i < 20000; ++i)
        many += L"<group ></group>";
    std::wstring valued = L"<groups>";
    for (int i = 1; i <= 2000; ++i)
        valued += L"<group id=" + std::to_wstring(i) + L"></group>";
    valued.append(L"<value>").append(blanks).append(L"</value>");
    for (const std::wstring& text :
         {many + L"index", std::wstring(many).append(L"id").append(blanks), valued}) {
        SystemValues values;
        const ULONGLONG start = GetTickCount64();
        values.AddValues(text);
        EXPECT_LT(GetTickCount64() - start, 5000U);
        EXPECT_EQ(std::distance(values.begin(), values.end()), text.starts_with(many) ? 0 : 2000);
    }
}

}  // namespace
}  // namespace kel
