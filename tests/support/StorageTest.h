#pragma once

#include <gmock/gmock.h>

#include "support/FakeStorage.h"
#include "support/FakeWmi.h"
#include "support/LogCapture.h"
#include "support/PlantedDevice.h"
#include "support/Split.h"
#include "support/StorageAnswers.h"
#include "support/TestSession.h"

namespace kel::test {

/// A machine whose storage, WMI and session are the test's.
struct StorageTest : testing::Test {
    FakeWmiData wmi;
    const FakeWmi fake{wmi};
    FakeStorage storage;
    TestSession session;

    void PlantWmiDisk(int number, const wchar_t* model)
    {
        wmi.objects[L"SELECT * FROM Win32_DiskDrive"].push_back(
            {{L"Model", {model}},
             {L"Name", {(L"\\\\.\\PHYSICALDRIVE" + std::to_wstring(number)).c_str()}},
             {L"SerialNumber", {L"SERIAL-4711"}},
             {L"Index", {static_cast<long>(number), CIM_SINT32}}});
    }
};

/// The lines of the log at the levels of errors and warnings.
inline Lines Complaints(const LogCapture& log)
{
    Lines lines = log.Lines();
    std::erase_if(lines, [](const std::wstring& line) {
        return !line.starts_with(L"ERR ") && !line.starts_with(L"WARN ");
    });
    return lines;
}

}  // namespace kel::test
