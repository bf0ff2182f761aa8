#include <gtest/gtest.h>

#include "detectors/Detectors.h"
#include "support/FakeStorage.h"
#include "support/FakeWmi.h"
#include "support/TestSession.h"

namespace kel {
namespace {

TEST(Disks, AreTwoHundredAtMost)
{
    test::FakeWmiData wmi;
    const test::FakeWmi fake(wmi);
    test::FakeStorage storage;
    const test::TestSession session;
    for (long number = 0; number < 250; ++number)
        wmi.objects[L"SELECT * FROM Win32_DiskDrive"].push_back(
            {{L"Model", {L"Of WMI"}}, {L"Index", {number, CIM_SINT32}}});
    HardDrive().Detect(storage.Functions());
    EXPECT_EQ(session.Text(72501) + L" " + session.At(199, {72502, 72509}), L"200 Of WMI|199");
}

}  // namespace
}  // namespace kel
