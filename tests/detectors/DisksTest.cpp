#include <gmock/gmock.h>

#include "support/PlantedMachine.h"

namespace kel {
namespace {

TEST(Disks, AreTwoHundredAtMost)
{
    test::Machine machine;
    machine.Add(L"detectors HardDrive");
    for (int number = 0; number < 250; ++number)
        machine.Add(L"wmi Win32_DiskDrive|Model=Of WMI|Index=" + std::to_wstring(number));
    test::FakeWmiData wmi;
    const test::FakeWmi fake(wmi);
    const test::Lines stored = test::PlantedMachine(machine, wmi).Detect().stored;
    EXPECT_THAT(stored, testing::IsSupersetOf({L"72501[0]=200", L"72502[199]=Of WMI", L"72509[199]=199"}));
}

}  // namespace
}  // namespace kel
