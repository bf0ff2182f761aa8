#include "machines/StorageMachines.h"

#include <regex>

#include "detectors/Detectors.h"
#include "detectors/ScsiControllers.h"
#include "probes/SetupLib.h"
#include "support/StorageTest.h"

namespace kel {
namespace {

using namespace test;

struct Machines : StorageTest {
    std::vector<std::unique_ptr<PlantedDevice>> planted;
    FakeVolumes volumes;

    void Plant(const ListedDevice& listed)
    {
        planted.push_back(std::make_unique<PlantedDevice>(listed.deviceClass, listed.instanceId.c_str()));
        planted.back()->With(SPDRP_HARDWAREID, listed.hardwareId).With(SPDRP_FRIENDLYNAME, listed.name);
        if (!listed.compatibleId.empty())
            planted.back()->With(SPDRP_COMPATIBLEIDS,
                                 std::wstring(L"first\0", 6) + listed.compatibleId + L'\0');
        if (!listed.driverVersion.empty())
            planted.back()->Device(L"x", L"").Driver(L"DriverVersion", listed.driverVersion);
        std::wstring path = listed.instanceId;
        std::ranges::replace(path, L'\\', L'#');
        const bool isDisk = listed.deviceClass == DiskClass;
        storage.devices[L"\\\\?\\" + path + (isDisk ? L"#{53f56307" : L"#{53f56308") +
                        L"-b6bf-11d0-94f2-00a0c91efb8b}"] = listed.device;
    }

    void Plant(const StorageMachine& machine)
    {
        for (const ListedDevice& device : machine.devices)
            Plant(device);
        for (std::size_t number = 0; number < machine.disks.size(); ++number) {
            storage.devices[L"\\\\.\\PhysicalDrive" + std::to_wstring(number)] = machine.disks[number];
            PlantWmiDisk(static_cast<int>(number), machine.wmiDisks[number].c_str());
        }
        if (const auto& drive = machine.wmiDrive; !drive.empty()) {
            wmi.objects[L"SELECT * FROM Win32_CDROMDrive"] = {{{L"Name", {drive[0].c_str()}},
                                                               {L"PNPDeviceID", {drive[1].c_str()}},
                                                               {L"Drive", {drive[2].c_str()}},
                                                               {L"MediaType", {drive[3].c_str()}}}};
        }
        storage.devices[L"\\\\.\\C:"].answers[ExtentsRequest] = Extents(machine.windowsDisks);
        volumes.volumes = machine.volumes;
    }

    Lines Detect()
    {
        CDRom().Detect(storage.Functions());
        DVD().Detect(storage.Functions());
        HardDrive().Detect(storage.Functions());
        LogicalDrive().Detect(volumes.Functions());
        SCSI().Detect(SetupLib::Instance());
        return session.Lines(72000, 73999);
    }
};

TEST_F(Machines, ComeOutLineForLine)
{
    for (const StorageMachine& machine : StorageMachines()) {
        planted.clear();
        storage.devices.clear();
        wmi.objects.clear();
        session.values = SystemValues();
        Plant(machine);
        const std::wregex line(L"(\\S[^;\\n]*?) *(?:;|\\n|$)");
        const Lines expected(
            std::wsregex_token_iterator(machine.stored.begin(), machine.stored.end(), line, 1), {});
        const Lines lines = Detect();
        EXPECT_EQ(lines, expected) << machine.name;
        for (const std::wstring& stored : lines)
            EXPECT_EQ(stored.find(L"SERIAL-4711"), std::wstring::npos) << stored;
    }
}

TEST(ScsiControllers, AreOfTheKindThatTheirClassCodeTells)
{
    const struct {
        const wchar_t* id;
        std::vector<std::wstring> compatible;
        const wchar_t* kind;
    } rows[] = {
        {L"PCI\\VEN_9005&DEV_0080", {L"PCI\\VEN_9005&CC_010000", L"PCI\\CC_0100"}, L"SCSI"},
        {L"PCI\\VEN_1000&DEV_0097", {L"PCI\\VEN_1000&DEV_0097&REV_02", L"pci\\cc_010700"}, L"SAS"},
        {L"PCI\\VEN_8086&DEV_2822", {L"PCI\\CC_0104"}, L"RAID"},
        {L"PCI\\VEN_144D&DEV_A808", {L"PCI\\CC_010802"}, L"NVMe"},
        {L"PCI\\VEN_8086&DEV_A102", {L"PCI\\CC_010601"}, L""},
        {L"PCI\\VEN_8086&DEV_A102", {L"PCI\\CC_01"}, L""},
        {L"PCI\\VEN_8086&DEV_A102", {}, L""},
        {L"", {}, L""},
        {L"ROOT\\ISCSIPRT", {}, L"virtual"},
        {L"VMBUS\\{BA6163D9}", {L"VMBUS\\X"}, L"virtual"},
        {L"PCI\\VEN_15AD&DEV_07C0", {L"PCI\\CC_0107"}, L"virtual"},
        {L"PCI\\VEN_1AF4&DEV_1004", {L"PCI\\CC_0100"}, L"virtual"},
    };
    for (const auto& row : rows) {
        ScsiInfo controller;
        controller.deviceId = DeviceID(row.id);
        controller.compatibleIds = row.compatible;
        EXPECT_EQ(GetControllerKind(controller), row.kind) << row.id;
    }
}

}  // namespace
}  // namespace kel
