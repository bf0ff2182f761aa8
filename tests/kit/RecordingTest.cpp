#include "kit/RecordedDevices.h"

#include <gmock/gmock.h>

#include "service/Utf8.h"
#include "support/PlantedMachine.h"
#include "values/Text.h"

namespace kel::kit {
namespace {

using test::Lines;
using test::Machine;

/// What the machines have of persons and single devices: in ids of devices, names of networks and endpoints,
/// folders and shares, in WMI's objects, in EDIDs (a text and a number, as bytes), and as addresses.
constexpr const wchar_t* Private[] = {L"ANNA",     L"4711",          L"021122",     L"02-11-22",
                                      L"02:11:22", L"DIARY",         L"FILESERVER", L"TSCLIENT",
                                      L"192.0.2",  L"4733443746363", L"424C4C30"};

std::string Join(const Lines& lines)
{
    std::string joined;
    for (const std::wstring& line : lines)
        joined += ToUtf8(Trim(line)) + "\n";
    return joined;
}

Machine WithDetectors(Machine machine, const DeviceRecording& recording)
{
    std::wstring names;
    for (const std::string_view name : recording.detectors)
        names += std::wstring(name.begin(), name.end()) + L" ";
    machine.Set(L"detectors", names);
    machine.Set(L"wanted", L"73404");  // nothing that takes loading a driver
    return machine;
}

DeviceRecording Record(const Machine& machine, test::FakeWmiData& wmi)
{
    DeviceRecording recording;
    test::PlantedMachine(machine, wmi)
        .Show([&recording](const auto& storage, const auto& volumes, const auto& network,
                           const auto& displays, const auto& graphics, const auto& sound) {
            DeviceMasks masks(Masker({L"Anna"}));
            recording = RecordDevices({storage, volumes, network, displays, graphics, sound}, masks);
        });
    return recording;
}

struct Recording : testing::TestWithParam<const char*> {};

TEST_P(Recording, GivesTheValuesOfTheMachineAndNothingPrivate)
{
    test::FakeWmiData wmi;
    const test::FakeWmi fakeWmi(wmi);
    for (const Machine& machine : test::ReadMachines(GetParam())) {
        SCOPED_TRACE(test::Narrow(machine.First(L"machine")));
        const DeviceRecording recording = Record(machine, wmi);
        Machine played;
        for (const std::string& line : recording.lines) {
            played.Add(FromUtf8(line));
            for (const wchar_t* const text : Private)
                EXPECT_EQ(ToUpper(FromUtf8(line)).find(text), std::wstring::npos)
                    << ToUtf8(text) << " in " << line;
        }
        const Lines found = test::PlantedMachine(WithDetectors(machine, recording), wmi).Detect().stored;
        EXPECT_EQ(Join(test::PlantedMachine(WithDetectors(played, recording), wmi).Detect().stored),
                  Join(found));
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Recording,
                         testing::Values("gaming_laptop.txt", "old_desktop.txt", "virtual_machine.txt",
                                         "tablet.txt", "bare_server.txt", "networks.txt", "real_disks.txt",
                                         "real_displays.txt", "real_graphics.txt", "sound.txt", "disks.txt",
                                         "disk_faults.txt", "real_devices.txt", "plugged_disks.txt",
                                         "optical.txt", "controllers.txt"),
                         [](const auto& file) {
                             const std::string name = file.param;
                             return name.substr(0, name.find('.'));
                         });

/// A laptop has all kinds of devices, so that no detector is missing in its recording.
TEST(RecordingOfDevices, HasAllDetectorsOfDevices)
{
    test::FakeWmiData wmi;
    const test::FakeWmi fakeWmi(wmi);
    EXPECT_THAT(Record(test::ReadMachines("gaming_laptop.txt").front(), wmi).detectors,
                testing::ElementsAre("CDRom", "DVD", "GPU", "Graphics", "HardDrive", "LogicalDrive",
                                     "Monitor", "NetworkDevice", "SCSI", "Sound"));
}

TEST(RecordingOfDevices, KeepsTheOrderOfEqualDevices)
{
    DeviceMasks masks(Masker({}));
    masks.Learn({L"USBSTOR\\DISK\\B2&0", L"USBSTOR\\DISK\\a1&0"});
    const std::string second = masks.Instance(L"usbstor\\disk\\b2&0");
    EXPECT_EQ(second, "USBSTOR\\DISK\\0002");
    EXPECT_LT(masks.Instance(L"USBSTOR\\DISK\\A1&0"), second);
    EXPECT_EQ(masks.Instance(L"BTHENUM\\DEV_AABBCCDDEEFF\\7&1"), "BTHENUM\\DEV_000000000003\\0003");
}

}  // namespace
}  // namespace kel::kit
