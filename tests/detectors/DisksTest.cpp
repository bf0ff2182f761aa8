#include <gmock/gmock.h>

#include <iostream>

#include "detectors/Detectors.h"
#include "support/LogCapture.h"
#include "support/TestSession.h"

namespace kel {
namespace {
TEST(Disks, Try)
{
    test::TestSession session;
    const test::LogCapture log(3);
    CoInitialize(nullptr);
    HardDrive().Detect();
    LogicalDrive().Detect();
    CDRom().Detect();
    DVD().Detect();
    SCSI().Detect();
    for (auto& l : log.Lines()) if (l.find(L"WMI value") == std::wstring::npos && l.find(L"Adding") == std::wstring::npos) std::wcout << l << L"\n";
    for (auto& l : session.Lines(72000, 73999)) std::wcout << l << L"\n";
}
}  // namespace
}  // namespace kel
