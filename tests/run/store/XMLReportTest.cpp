#include "run/store/XMLReport.h"

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include <stdexcept>

#include "support/TestSession.h"

namespace kel {
namespace {

class Unprintable : public Value {
public:
    const wchar_t* ToString() const override { throw std::runtime_error("no text"); }
};

std::wstring Report(const test::TestSession& session)
{
    std::wstring report = L"left over";
    XMLReport(session.values).GetReport(XMLReport::StandardOption, report);
    return report;
}

TEST(XMLReport, WritesWantedValuesInTheStoresOrder)
{
    test::TestSession session;
    EXPECT_EQ(Report(session), L"<groups></groups>  ");
    session.wanted.Assign(L"5|7,0abc", L"referrer");
    session.values.AddValue(7, L"a<b&c>\"'");
    session.values.AddValue(6, L"not wanted");
    session.values.AddValue(71466, L"No");
    session.values.AddValue(SystemValueID(GroupID(std::wstring(L"abc")), 2), std::wstring(L"by number 0"));
    session.values.AddValue(SystemValueID(GroupID(5U), -1), std::wstring(L""));
    session.values.AddValue(71207, L"machine");
    session.values.AddValue(71465, L"No");
    session.values.AddValue(71206, L"not fixed");
    EXPECT_EQ(Report(session),
              L"<groups><group index=\"0\" id=\"7\"><value>a&lt;b&amp;c&gt;\"'</value></group>"
              L"<group index=\"0\" id=\"71466\"><value>No</value></group>"
              L"<group index=\"2\" id=\"abc\"><value>by number 0</value></group>"
              L"<group index=\"-1\" id=\"5\"><value></value></group>"
              L"<group index=\"0\" id=\"71207\"><value>machine</value></group>"
              L"<group index=\"0\" id=\"71465\"><value>No</value></group></groups>  ");
}

TEST(XMLReport, ClosesTheGroupOfAValueThatHasNoText)
{
    test::TestSession session;
    session.wanted.Assign(L"1", L"");
    session.values.AddValue(SystemValueID(GroupID(1U)), boost::make_shared<const Unprintable>());
    EXPECT_EQ(Report(session), L"<groups><group index=\"0\" id=\"1\"></group></groups>  ");
}

}  // namespace
}  // namespace kel
