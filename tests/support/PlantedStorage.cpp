#include "support/PlantedStorage.h"

#include "support/StorageAnswers.h"
#include "values/Text.h"

namespace kel::test {

PlantedDevice& PlantedStorage::List(DeviceClass deviceClass, const std::wstring& instance,
                                    const std::wstring& hardwareId, const std::wstring& name)
{
    listed.push_back(std::make_unique<PlantedDevice>(deviceClass, instance.c_str()));
    return listed.back()->With(SPDRP_HARDWAREID, hardwareId).With(SPDRP_FRIENDLYNAME, name);
}

void PlantedStorage::Plant(const Machine& machine, FakeWmiData& wmi)
{
    PlantDisks(machine, wmi);
    PlantOpticalDrives(machine);
    for (const std::wstring& line : machine[L"controller"]) {
        const Lines fields = FieldsOf(line, 4);
        PlantedDevice& device = List(ScsiClass, fields[0] + L"\\3&11583659&0&E8", fields[0], fields[1]);
        device.Device(L"x", L"").Driver(L"DriverVersion", fields[3]);
        if (!fields[2].empty())
            device.With(SPDRP_COMPATIBLEIDS, std::wstring(L"first\0", 6) + fields[2] + L'\0');
    }
    for (const std::wstring& line : machine[L"volume"]) {
        const Lines fields = FieldsOf(line, 6);
        FakeVolume& volume = volumes.volumes[fields[0][0]];
        volume.type = static_cast<UINT>(NumberOf(fields[1]));
        volume.fileSystem = fields[2];
        volume.size = NumberOf(fields[3]) << 30;
        volume.free = NumberOf(fields[4]) << 30;
        if (!fields[5].empty())
            volume.target = fields[5];
    }
}

void PlantedStorage::PlantDisks(const Machine& machine, FakeWmiData& wmi)
{
    long number = 0;
    for (const std::wstring& line : machine[L"disk"]) {
        const Lines fields = FieldsOf(line, 8);
        const std::wstring path = L"\\\\.\\PhysicalDrive" + std::to_wstring(number);
        const std::string vendor = Narrow(fields[1]), product = Narrow(fields[2]),
                          revision = Narrow(fields[3]);
        const int bus = std::stoi(fields[0]);
        const bool isRemovable = fields[6] == L"removable";
        FakeDevice& disk = devices.devices[path];
        disk.answers[DeviceProperty] = Descriptor(bus, vendor.empty() ? nullptr : vendor.c_str(),
                                                  product.c_str(), revision.c_str(), isRemovable);
        disk.answers[GeometryRequest] = Geometry(NumberOf(fields[4]));
        disk.answers[HotplugRequest] = HotplugInfo(isRemovable, bus == BusTypeUsb);
        if (!fields[5].empty())
            disk.answers[SeekPenalty] = Flag(fields[5] == L"seeks");
        wmi.objects[L"SELECT * FROM Win32_DiskDrive"].push_back({{L"Model", {fields[7].c_str()}},
                                                                 {L"Name", {ToUpper(path).c_str()}},
                                                                 {L"SerialNumber", {L"SERIAL-4711"}},
                                                                 {L"Index", {number++, CIM_SINT32}}});
    }
    std::vector<std::uint32_t> windowsDisks;
    for (const std::wstring& field : Split(machine.First(L"windows"), L'|'))
        windowsDisks.push_back(static_cast<std::uint32_t>(NumberOf(field)));
    devices.devices[L"\\\\.\\C:"].answers[ExtentsRequest] = Extents(windowsDisks);
    for (const std::wstring& line : machine[L"disk-device"]) {
        const Lines fields = FieldsOf(line, 4);
        List(DiskClass, fields[0], fields[1], fields[2]);
        devices.InterfaceOf(fields[0], L"53f56307").answers[NumberRequest] =
            Number(FILE_DEVICE_DISK, static_cast<std::uint32_t>(NumberOf(fields[3])));
    }
}

void PlantedStorage::PlantOpticalDrives(const Machine& machine)
{
    for (const std::wstring& line : machine[L"optical"]) {
        const Lines fields = FieldsOf(line, 6);
        List(OpticalClass, fields[0], fields[1], fields[2]);
        FakeDevice& drive = devices.InterfaceOf(fields[0], L"53f56308");
        drive.answers[NumberRequest] =
            Number(FILE_DEVICE_CD_ROM, static_cast<std::uint32_t>(NumberOf(fields[3])));
        drive.answers[DeviceProperty] =
            Descriptor(std::stoi(fields[4]), nullptr, "of the descriptor", "1", true);
        std::vector<int> profiles;
        for (const std::wstring& profile : Split(fields[5], L' '))
            profiles.push_back(std::stoi(profile, nullptr, 16));
        drive.answers[ConfigurationRequest] = Profiles(profiles);
    }
}

}  // namespace kel::test
