#include <gmock/gmock.h>

#include "detectors/Detectors.h"
#include "support/LogCapture.h"
#include "support/PlantedGraphics.h"
#include "support/TestSession.h"

namespace kel {
namespace {

TEST(Graphics, LogTellsWhereAFactIsFromAndNamesTheDriverBeforeItIsCalled)
{
    test::TestSession session;
    session.wanted.Assign(L"72008", L"");
    test::Machine machine;
    for (const wchar_t* line : {L"card old|Old|1002|9440|5001002|512|1024|0|a100|0|0|1105|8001100040005",
                                L"has old", L"set broken|D3D11CreateDevice"})
        machine.Add(line);
    test::PlantedGraphics planted(machine);
    const test::LogCapture log(3);
    GPU().Detect(planted.adapters);
    test::Lines lines = log.Lines();
    std::erase_if(lines, [](const std::wstring& line) {
        return line.find(L"Old") == std::wstring::npos && !line.starts_with(L"TRACE GPU[0]");
    });
    EXPECT_THAT(lines, testing::IsSupersetOf({L"TRACE GPU[0] dedicated memory from DXGI",
                                              L"TRACE GPU[0] driver version from DXGI",
                                              L"TRACE GPU[0] feature level from Direct3D 10"}));
    const auto failure = std::ranges::find(lines, L"ERR Error in D3D11CreateDevice for Old");
    ASSERT_NE(failure, lines.end());
    EXPECT_EQ(*(failure - 1), L"TRACE Calling D3D11CreateDevice for Old");
    EXPECT_EQ(*(failure + 1), L"TRACE Calling D3D10CreateDevice1 for Old");
}

}  // namespace
}  // namespace kel
