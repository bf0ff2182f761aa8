#include <comutil.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "control/SysInfo.h"
#include "support/LogCapture.h"

namespace kel {
namespace {

using Lines = std::vector<std::wstring>;

struct Members : testing::Test {
    Members() { CSysInfo::Create(nullptr, IID_ISysInfo, reinterpret_cast<void**>(control.GetAddressOf())); }

    Microsoft::WRL::ComPtr<ISysInfo> control;
    _bstr_t text;
};

bool IsOfRun(const std::wstring& line)
{
    return line.starts_with(L"MARK Entering: ") && !line.ends_with(L"::Initialize") &&
           line.find(L"kel::WMI::") == std::wstring::npos && line.find(L"kel::OS::") == std::wstring::npos &&
           (!line.ends_with(L"::Detect") || line.find(L"Sys") != std::wstring::npos);
}

TEST_F(Members, TraceTheStepsOfARunInTheirOrder)
{
    const test::LogCapture log(4);
    control->get_System(nullptr, text.GetAddress());
    control->get_Analysis(nullptr, nullptr, nullptr, text.GetAddress());
    control->Configure(_bstr_t(L"<groups>"));
    Lines lines = log.Lines();
    EXPECT_EQ(std::ranges::count(lines, L"ERR Can't send Internet request."),
              3);  // the proxy of the tests refuses
    EXPECT_EQ(std::ranges::count(lines, L"ERR Can't send Internet request. Error: 12029"), 3);
    std::erase_if(lines, [](const std::wstring& line) { return !IsOfRun(line); });
    for (std::wstring& line : lines)
        line.erase(0, std::size(L"MARK Entering: ") - 1);
    EXPECT_EQ(lines, (Lines{L"CSysInfo::get_System", L"CSysInfo::get_SysInfo", L"kel::System::Detect",
                            L"kel::WebService::Call",  // the wanted groups
                            L"kel::Components::Init", L"kel::XMLReport::GetReport", L"kel::WebService::Call",
                            L"kel::XMLReport::GetReport", L"CSysInfo::get_Analysis", L"CSysInfo::Detect",
                            L"kel::System::Detect", L"kel::XMLReport::GetReport", L"kel::WebService::Call",
                            L"CSysInfo::Configure", L"kel::System::SetConfiguration",
                            L"kel::SystemValues::AddValues"}));
}

TEST_F(Members, LogTheLevelAndWhatFailsInThem)
{
    const test::LogCapture log(3);
    control->put_Logging(_bstr_t(L"3"));
    control->put_ReferrerID(_bstr_t(L"r"));
    BSTR value = text.GetBSTR();
    EXPECT_EQ(control->get_Value(_bstr_t(L"1"), &value), S_OK);
    EXPECT_EQ(value, nullptr);
    const Lines lines = log.Lines();
    EXPECT_EQ(lines.front(), L"TRACE Setting level to: 3");
    EXPECT_EQ(lines.back(), L"ERR Caught exception.");
    control->put_Logging(_bstr_t(L"1"));
    control->put_Logging(_bstr_t(L"7"));  // the level in force does not show the line
    EXPECT_EQ(std::ranges::count(log.Lines(), L"TRACE Setting level to: 7"), 0);
}

}  // namespace
}  // namespace kel
