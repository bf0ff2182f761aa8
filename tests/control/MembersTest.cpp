#include <comutil.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <regex>
#include <stdexcept>

#include "control/SysInfo.h"
#include "run/System.h"
#include "support/LogCapture.h"
#include "support/TestSession.h"

namespace kel {
namespace {

constexpr const wchar_t* Missing = L"TRACE The system has no function ";

using Lines = std::vector<std::wstring>;

struct Members : testing::Test {
    Members() { CSysInfo::Create(nullptr, IID_ISysInfo, reinterpret_cast<void**>(control.GetAddressOf())); }

    Microsoft::WRL::ComPtr<ISysInfo> control;
    _bstr_t text;
};

TEST_F(Members, TraceTheStepsOfARunInOrder)
{
    const test::LogCapture log(4);
    control->get_System(nullptr, text.GetAddress());
    control->get_Analysis(nullptr, nullptr, nullptr, text.GetAddress());
    EXPECT_STREQ(text, L"");  // not missing, though nothing answers
    control->Configure(_bstr_t(L"<groups>"));
    EXPECT_EQ(Log::Instance().GetLevel(), LogMaximum);  // every run logs in full
    const Lines lines = log.Lines();
    // The proxy of the tests refuses.
    EXPECT_EQ(std::ranges::count(lines, L"ERR Can't send Internet request."), 3);
    EXPECT_EQ(std::ranges::count(lines, L"ERR Can't send Internet request. Error: 12029"), 3);
    EXPECT_THAT(lines, testing::Contains(L"MARK Header: Content-Type = application/xml; charset=utf-8"));
    EXPECT_THAT(lines, testing::Each(Not(testing::HasSubstr(L"apikey"))));
    // Wine lacks these; each other function is found by its name, in its library.
    const Lines lacking = {L"GetFirmwareType", L"D3DKMTQueryAdapterInfo", L"GetPackagesByPackageFamily",
                           L"GetPackagePathByFullName"};
    for (const std::wstring& line : lines) {
        if (line.starts_with(Missing)) {
            EXPECT_THAT(lacking, testing::Contains(line.substr(wcslen(Missing))));
        }
    }
    const std::wregex step(
        L"MARK Entering: (?!kel::(?:WMI|SetupLib)::|.*::(?:Initialize|GetSupportInf.*)$)(.*)");
    std::wstring steps;
    for (const std::wstring& line : lines) {
        if (std::wsmatch match; std::regex_match(line, match, step))
            steps += match.str(1) + L" ";
    }
    EXPECT_EQ(steps,
              L"CSysInfo::get_System CSysInfo::get_SysInfo kel::System::Detect "
              L"kel::WebService::Call kel::Components::Init "  // the wanted groups, and the detectors
              L"kel::CPU::Detect kel::GPU::Detect kel::Bios::Detect kel::CDRom::Detect kel::Chassis::Detect "
              L"kel::DirectX::Detect kel::DVD::Detect kel::Graphics::Detect kel::HardDrive::Detect "
              L"kel::LogicalDrive::Detect kel::MotherBoard::Detect kel::NetworkDevice::Detect "
              L"kel::OS::Detect kel::Ram::Detect kel::Sound::Detect kel::Software::Detect "
              L"kel::Browser::Detect kel::Monitor::Detect kel::Applications::Detect kel::SCSI::Detect "
              L"kel::XMLReport::GetReport kel::WebService::Call kel::XMLReport::GetReport "
              L"CSysInfo::get_Analysis CSysInfo::Detect kel::System::Detect kel::XMLReport::GetReport "
              L"kel::WebService::Call "
              L"CSysInfo::Configure kel::System::SetConfiguration kel::SystemValues::AddValues ");
}

TEST_F(Members, LogTheLevelAndTheirFailures)
{
    static_cast<void>(System::Instance());
    const test::LogCapture log(4);
    control->put_ReferrerID(_bstr_t(L"r"));
    control->put_Logging(_bstr_t(L"3"));
    EXPECT_THAT(log.Lines(),
                testing::ElementsAre(
                    L"MARK Entering: CSysInfo::put_ReferrerID", L"MARK Exiting: CSysInfo::put_ReferrerID",
                    L"MARK Entering: CSysInfo::put_Logging", L"TRACE Setting level to: 3",
                    testing::HasSubstr(L", process "), L"TRACE service analysis.keldane.example (built in)",
                    L"MARK Exiting: CSysInfo::put_Logging"));
    const _bstr_t old(L"old");
    BSTR value = old;
    EXPECT_EQ(control->get_Value(_bstr_t(L"1"), &value), S_OK);
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(log.Lines().back(), L"ERR Caught exception.");
    Microsoft::WRL::ComPtr<ITypeInfo> info;
    EXPECT_EQ(control->GetTypeInfo(0, 0, &info), TYPE_E_CANTLOADLIBRARY);  // the DLL has one
    EXPECT_EQ(log.Lines().back(), L"ERR The type library cannot be loaded.");
    control->put_Logging(_bstr_t(L"1"));
    control->put_Logging(_bstr_t(L"7"));  // the level in force does not show the line
    EXPECT_EQ(std::ranges::count(log.Lines(), L"TRACE Setting level to: 7"), 0);
}

struct BrokenSession : test::TestSession {
    bool IsWanted(const GroupID&) const override
    {
        return isBroken ? throw std::runtime_error("broken") : false;
    }
    bool isBroken = false;
};

TEST_F(Members, GiveAnEmptyReportAndNoVerdictWhenTheRunThrows)
{
    static_cast<void>(System::Instance());
    BrokenSession session;
    EXPECT_EQ(control->get_SysInfo(text.GetAddress()), S_OK);
    EXPECT_GT(text.length(), 0U);
    session.isBroken = true;
    const test::LogCapture log(1);
    EXPECT_EQ(control->get_SysInfo(text.GetAddress()), S_OK);
    ASSERT_NE(text.GetBSTR(), nullptr);
    EXPECT_EQ(text.length(), 0U);
    EXPECT_THAT(log.Lines(), testing::Contains(L"ERR Caught exception."));
    BSTR verdict = text;
    EXPECT_EQ(control->get_Analysis(nullptr, nullptr, nullptr, &verdict), S_OK);
    EXPECT_EQ(verdict, nullptr);
    EXPECT_EQ(std::ranges::count(log.Lines(), L"ERR Caught exception: broken"), 1);
}

}  // namespace
}  // namespace kel
