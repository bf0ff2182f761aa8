#include "support/PlantedStorage.h"

#include <cmath>

#include "support/StorageAnswers.h"
#include "values/Text.h"

namespace kel::test {

namespace {

/// An optical drive by its fields: number, bus, product, profiles, media types (device, type,
/// characteristics), and what is odd about it.
void Describe(FakeDevice& drive, const Lines& fields)
{
    const auto numbers = [](const std::wstring& field) {
        std::vector<int> found;
        for (const std::wstring& number : Split(field, L' '))
            found.push_back(std::stoi(number, nullptr, 16));
        return found;
    };
    drive.answers[NumberRequest] = Number(fields[5] == L"a disk" ? FILE_DEVICE_DISK : FILE_DEVICE_CD_ROM,
                                          static_cast<std::uint32_t>(NumberOf(fields[0])));
    drive.answers[DeviceProperty] =
        Descriptor(std::stoi(fields[1]), nullptr, Narrow(fields[2]).c_str(), "1", true);
    if (!fields[3].empty())
        drive.answers[ConfigurationRequest] = Profiles(numbers(fields[3]));
    if (const std::vector<int> media = numbers(fields[4]); !media.empty()) {
        std::vector<std::pair<int, int>> types;
        for (std::size_t place = 1; place + 1 < media.size(); place += 2)
            types.emplace_back(media[place], media[place + 1]);
        drive.answers[MediaTypesRequest] = MediaTypes(media[0], types);
    }
    if (fields[5] == L"cut")
        drive.answers[ConfigurationRequest].resize(16);
    drive.isReadable = fields[5] != L"locked";
    drive.openError = fields[5] == L"gone"     ? ERROR_FILE_NOT_FOUND
                      : fields[5] == L"throws" ? Throws
                                               : ERROR_SUCCESS;
}

ULONGLONG GigabytesOf(const std::wstring& text)
{
    return text.empty() ? 0 : static_cast<ULONGLONG>(std::llround(std::stod(text) * (1U << 30)));
}

}  // namespace

PlantedDevice& PlantedStorage::List(DeviceClass deviceClass, const std::wstring& instance,
                                    const std::wstring& hardwareId, const std::wstring& name)
{
    listed.push_back(std::make_unique<PlantedDevice>(deviceClass, instance.c_str()));
    return listed.back()->With(SPDRP_HARDWAREID, hardwareId).With(SPDRP_FRIENDLYNAME, name);
}

void PlantedStorage::Plant(const Machine& machine, FakeWmiData& wmi)
{
    PlantDisks(machine, wmi);
    PlantFaults(machine);
    PlantOpticalDrives(machine);
    PlantVolumes(machine);
    for (const std::wstring& line : machine[L"controller"]) {
        const Lines fields = FieldsOf(line, 6);
        PlantedDevice& device =
            List(ScsiClass, fields[0] + L"\\3&11583659&0&E8" + fields[4], fields[0], fields[1]);
        device.Device(L"x", L"").Driver(L"DriverVersion", fields[3]).InState(fields[5]);
        if (!fields[2].empty())
            device.With(SPDRP_COMPATIBLEIDS, std::wstring(L"first\0", 6) + fields[2] + L'\0');
    }
}

void PlantedStorage::PlantDisks(const Machine& machine, FakeWmiData& wmi)
{
    long number = -1;
    for (const std::wstring& line : machine[L"disk"]) {
        const Lines fields = FieldsOf(line, 9);
        number = fields[8].empty() ? number + 1 : std::stol(fields[8]);
        const std::wstring path = L"\\\\.\\PhysicalDrive" + std::to_wstring(number);
        const std::string vendor = Narrow(fields[1]), product = Narrow(fields[2]),
                          revision = Narrow(fields[3]);
        const int bus = static_cast<int>(NumberOf(fields[0]));
        const auto is = [&fields](const wchar_t* odd) { return fields[6].find(odd) != std::wstring::npos; };
        FakeDevice& disk = devices.devices[path];
        disk.answers[DeviceProperty] = Descriptor(bus, vendor.empty() ? nullptr : vendor.c_str(),
                                                  product.c_str(), revision.c_str(), is(L"removable"));
        disk.answers[GeometryRequest] =
            Geometry(NumberOf(fields[4]), is(L"floppy") ? F3_1Pt44_512 : FixedMedia);
        disk.answers[HotplugRequest] =
            HotplugInfo(is(L"ejects"), is(L"unplugs") || (bus == BusTypeUsb && !is(L"stays")));
        if (!fields[5].empty())
            disk.answers[SeekPenalty] = Flag(fields[5] == L"seeks");
        if (fields[7].empty())
            continue;
        wmi.objects[L"SELECT * FROM Win32_DiskDrive"].push_back({{L"Model", {fields[7].c_str()}},
                                                                 {L"Name", {ToUpper(path).c_str()}},
                                                                 {L"SerialNumber", {L"SERIAL-4711"}},
                                                                 {L"Index", {number, CIM_SINT32}}});
    }
    for (const std::wstring& line : machine[L"windows"]) {
        std::vector<std::uint32_t> windowsDisks;
        for (const std::wstring& field : Split(line, L'|'))
            windowsDisks.push_back(static_cast<std::uint32_t>(NumberOf(field)));
        devices.devices[L"\\\\.\\C:"].answers[ExtentsRequest] = Extents(windowsDisks);
    }
    for (const std::wstring& line : machine[L"windows-number"])
        devices.devices[L"\\\\.\\C:"].answers[NumberRequest] =
            Number(FILE_DEVICE_DISK, static_cast<std::uint32_t>(NumberOf(line)));
    for (const std::wstring& line : machine[L"disk-device"]) {
        const Lines fields = FieldsOf(line, 6);
        List(DiskClass, fields[0], fields[1], fields[2]).InContainer(fields[4]).InState(fields[5]);
        if (!fields[3].empty())
            devices.InterfaceOf(fields[0], L"53f56307").answers[NumberRequest] =
                Number(FILE_DEVICE_DISK, static_cast<std::uint32_t>(NumberOf(fields[3])));
    }
}

void PlantedStorage::PlantFaults(const Machine& machine)
{
    const std::map<std::wstring, Request> requests = {{L"descriptor", DeviceProperty},
                                                      {L"geometry", GeometryRequest}};
    for (const std::wstring& line : machine[L"fault"]) {
        const Lines fields = FieldsOf(line, 4);
        FakeDevice& disk = devices.devices[L"\\\\.\\PhysicalDrive" + fields[0]];
        const auto number = static_cast<DWORD>(NumberOf(fields[3]));
        if (fields[1] == L"asleep")
            disk.isAwake = false;
        else if (fields[1] == L"open")
            disk.openError = number;
        else if (fields[2] == L"refused")
            disk.errors[requests.at(fields[1])] = number;
        else
            disk.answers[requests.at(fields[1])].resize(number);
    }
    devices.listError = static_cast<DWORD>(NumberOf(machine.First(L"no-list")));
}

void PlantedStorage::PlantOpticalDrives(const Machine& machine)
{
    for (const std::wstring& line : machine[L"optical"]) {
        Lines fields = FieldsOf(line, 10);
        List(OpticalClass, fields[0], fields[1], fields[2]).InState(fields[9]);
        FakeDevice& drive = devices.InterfaceOf(fields[0], L"53f56308");
        fields.erase(fields.begin(), fields.begin() + 3);
        Describe(drive, fields);
    }
    for (const std::wstring& line : machine[L"drive"]) {
        const Lines fields = FieldsOf(line, 6);
        Describe(devices.devices[L"\\\\.\\CdRom" + fields[0]], fields);
    }
    for (const std::wstring& line : machine[L"letter"]) {
        const Lines fields = FieldsOf(line, 2);
        devices.letters[fields[0]] = fields[1];
    }
}

void PlantedStorage::PlantVolumes(const Machine& machine)
{
    for (const std::wstring& line : machine[L"volume"]) {
        const Lines fields = FieldsOf(line, 8);
        FakeVolume& volume = volumes.volumes[fields[0][0]];
        volume.type = static_cast<UINT>(NumberOf(fields[1]));
        volume.fileSystem = fields[2];
        volume.size = GigabytesOf(fields[3]);
        volume.free = GigabytesOf(fields[4]);
        if (!fields[5].empty())
            volume.target = fields[5];
        volume.throws = fields[6] == L"throws";
        if (!fields[6].empty() && !volume.throws)
            volume.error = static_cast<DWORD>(NumberOf(fields[6]));
        std::vector<std::uint32_t> disks;
        for (const std::wstring& disk : Split(fields[7], L' '))
            disks.push_back(static_cast<std::uint32_t>(NumberOf(disk)));
        if (!disks.empty())
            devices.devices[L"\\\\.\\" + fields[0] + L":"].answers[ExtentsRequest] = Extents(disks);
    }
    volumes.profile = machine.First(L"profile");
    if (const std::wstring folder = machine.First(L"windows-folder"); !folder.empty())
        volumes.windows = devices.windows = folder;
}

}  // namespace kel::test
