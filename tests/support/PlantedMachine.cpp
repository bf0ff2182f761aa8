#include "support/PlantedMachine.h"

#include <initguid.h>

#include <devguid.h>

#include <algorithm>
#include <functional>

#include "detectors/Detectors.h"
#include "probes/cpu/CPUID.h"
#include "probes/graphics/DisplayConfig.h"
#include "probes/setup/SetupLib.h"
#include "probes/sound/SoundEndpoints.h"
#include "probes/storage/Disks.h"
#include "probes/system/Battery.h"
#include "probes/system/Memory.h"
#include "run/store/XMLReport.h"
#include "support/LogCapture.h"
#include "support/PlantedGraphics.h"
#include "support/TestSession.h"
#include "values/Text.h"
#include "verdict/Catalogue.h"

namespace kel::test {

namespace {

/// The answers of functions that have no parameter for a test's data.
const Machine* answering = nullptr;

bool areDevicesReversed = false;
Lines deviceFaults;

/// The system's function, in the system's order or the opposite one.
BOOL WINAPI EnumDevices(HDEVINFO set, DWORD index, SP_DEVINFO_DATA* device)
{
    DWORD count = 0;
    while (areDevicesReversed && SetupDiEnumDeviceInfo(set, count, device))
        ++count;
    return SetupDiEnumDeviceInfo(set, index < count ? count - 1 - index : index, device);
}

/// The error with which a property or key of a device cannot be read; 0 for none.
DWORD FindFault(HDEVINFO set, SP_DEVINFO_DATA* device, const std::wstring& what)
{
    wchar_t instance[200] = {};
    SetupDiGetDeviceInstanceIdW(set, device, instance, std::size(instance), nullptr);
    for (const std::wstring& line : deviceFaults) {
        const Lines fields = FieldsOf(line, 3);
        if (ToUpper(fields[0]) != ToUpper(instance) || fields[1] != what)
            continue;
        if (fields[2] == L"throws")
            throw 1;
        return static_cast<DWORD>(NumberOf(fields[2]));
    }
    return ERROR_SUCCESS;
}

BOOL WINAPI ReadProperty(HDEVINFO set, SP_DEVINFO_DATA* device, DWORD property, DWORD* type, BYTE* data,
                         DWORD size, DWORD* needed)
{
    const DWORD error = FindFault(set, device, std::to_wstring(property));
    SetLastError(error);
    return error == ERROR_SUCCESS &&
           SetupDiGetDeviceRegistryPropertyW(set, device, property, type, data, size, needed);
}

BOOL WINAPI ReadInstanceId(HDEVINFO set, SP_DEVINFO_DATA* device, wchar_t* text, DWORD size, DWORD* needed)
{
    const DWORD error = FindFault(set, device, L"instance");
    SetLastError(error);
    return error == ERROR_SUCCESS && SetupDiGetDeviceInstanceIdW(set, device, text, size, needed);
}

HKEY WINAPI OpenDriver(HDEVINFO set, SP_DEVINFO_DATA* device, DWORD scope, DWORD profile, DWORD kind,
                       REGSAM access)
{
    const DWORD error = FindFault(set, device, kind == DIREG_DRV ? L"driver" : L"hardware");
    SetLastError(error);
    return error == ERROR_SUCCESS ? SetupDiOpenDevRegKey(set, device, scope, profile, kind, access)
                                  : static_cast<HKEY>(INVALID_HANDLE_VALUE);
}

BOOL WINAPI AnswerMemory(MEMORYSTATUSEX* status)
{
    if (status->dwLength != sizeof(*status))
        return FALSE;
    const Lines fields = FieldsOf(answering->First(L"memory"), 3);
    status->ullTotalPhys = NumberOf(fields[0]) << 20;
    status->ullTotalVirtual = NumberOf(fields[1]) << 20;
    status->ullAvailPhys = NumberOf(fields[2]) << 20;
    return TRUE;
}

BOOL WINAPI AnswerInstalled(ULONGLONG* kilobytes)
{
    const std::wstring megabytes = FieldsOf(answering->First(L"memory"), 4)[3];
    *kilobytes = NumberOf(megabytes) << 10;
    SetLastError(ERROR_NOT_SUPPORTED);
    return !megabytes.empty();
}

int WINAPI AnswerMetrics(int metric)
{
    const Lines fields = FieldsOf(answering->First(L"touch"), 2);
    return static_cast<int>(metric == SM_MAXIMUMTOUCHES ? NumberOf(fields[0])
                            : metric == SM_DIGITIZER    ? NumberOf(fields[1], 16)
                                                        : 0);
}

BOOLEAN WINAPI AnswerPower(SYSTEM_POWER_CAPABILITIES* capabilities)
{
    const std::wstring battery = answering->First(L"battery");
    capabilities->SystemBatteriesPresent = !battery.empty();
    capabilities->BatteriesAreShortTerm = battery == L"short";
    return battery != L"refused";
}

/// Why values are empty: those of the store, and those of the catalogue that it lacks.
Lines ListReasons(const SystemValues& values)
{
    std::vector<SystemValueID> ids;
    for (const SystemValue& value : values)
        ids.push_back(value.ID());
    for (const CatalogueValue& value : CatalogueValues)
        ids.emplace_back(GroupID(static_cast<unsigned>(value.id)));
    Lines reasons;
    for (const SystemValueID& id : ids) {
        if (const std::optional<Reason> reason = values.FindReason(id))
            reasons.push_back(id.Group().Text() + L"[" + std::to_wstring(id.Index()) + L"]=" +
                              reason->ToString());
    }
    return reasons;
}

}  // namespace

PlantedMachine::PlantedMachine(const Machine& newMachine, FakeWmiData& newWmi)
    : machine(newMachine),
      wmi(newWmi),
      system(machine),
      software(machine),
      network(machine[L"adapter"]),
      soundDevices(machine[L"sound"])
{
    PlantBasics();
    PlantGraphics();
    PlantDisplays();
    PlantSound();
    storage.Plant(machine, wmi);
    areDevicesReversed = !machine[L"reversed"].empty();
    deviceFaults = machine[L"device-fault"];
    SetupLib::Instance().Change([](SetupEntryPoints& table) {
        table.enumDeviceInfo = &EnumDevices;
        table.getDeviceRegistryProperty = &ReadProperty;
        table.getDeviceInstanceId = &ReadInstanceId;
        table.openDevRegKey = &OpenDriver;
    });
    if (areDevicesReversed)
        Reverse();
}

/// The Setup API's devices and the graphics cards are reversed where they are listed.
void PlantedMachine::Reverse()
{
    network.Reverse();
    std::ranges::reverse(displays.screens);
    std::ranges::reverse(sound.endpoints);
    if (sound.defaultOutput >= 0)
        sound.defaultOutput = static_cast<int>(sound.endpoints.size()) - 1 - sound.defaultOutput;
    std::ranges::reverse(wmi.objects[L"SELECT * FROM Win32_DiskDrive"]);
}

void PlantedMachine::PlantBasics()
{
    wmi.objects.clear();
    const std::wstring refused = machine.First(L"no-wmi");
    wmi.query = static_cast<HRESULT>(NumberOf(refused, 16));
    network.Break(machine);
    software.userKeys.Make(L"software\\Keldane");  // in which the machine's identifier is kept
    const std::wstring diskClass = machine.First(L"disk-class");
    software.machineKeys.Write(
        L"SYSTEM\\CurrentControlSet\\Control\\Class\\{4D36E967-E325-11CE-BFC1-08002BE10318}", L"Class",
        diskClass.empty() ? L"DiskDrive" : diskClass);
    for (const std::wstring& line : machine[L"value"]) {
        const Lines fields = FieldsOf(line, 4);  // the last for bytes
        std::string bytes;
        for (const std::wstring& byte : Split(fields[3], L' '))
            bytes += static_cast<char>(NumberOf(byte, 16));
        const bool isNumber = fields[2].starts_with(L'#');
        const DWORD number = isNumber ? static_cast<DWORD>(NumberOf(fields[2].substr(1))) : 0;
        if (isNumber)
            software.machineKeys.Write(fields[0], fields[1].c_str(), REG_DWORD, &number, sizeof(number));
        else if (bytes.empty())
            software.machineKeys.Write(fields[0], fields[1].c_str(), fields[2]);
        else
            software.machineKeys.Write(fields[0], fields[1].c_str(), REG_BINARY, bytes.data(), bytes.size());
    }
    for (const std::wstring& line : machine[L"wmi"]) {
        const Lines fields = Split(line, L'|');
        auto& objects = wmi.objects[L"SELECT * FROM " + fields[0]];
        if (fields.size() == 1)  // a class without objects
            continue;
        WmiProperties& object = objects.emplace_back();
        for (std::size_t place = 1; place < fields.size(); ++place) {
            const std::size_t equals = fields[place].find(L'=');
            object[fields[place].substr(0, equals)] = {fields[place].substr(equals + 1).c_str()};
        }
    }
    for (const std::wstring& line : machine[L"cpuid"]) {
        const Lines fields = FieldsOf(line, 5);
        CpuRegisters& registers = leaves[static_cast<std::uint32_t>(NumberOf(fields[0], 16))];
        for (std::size_t place = 0; place < registers.size(); ++place)
            registers[place] = static_cast<std::uint32_t>(NumberOf(fields[place + 1], 16));
    }
    PlantChassis();
}

void PlantedMachine::PlantChassis()
{
    for (const std::wstring& line : machine[L"device"]) {
        const Lines fields = FieldsOf(line, 4);
        const GUID& guid = fields[0] == L"Camera"  ? GUID_DEVCLASS_CAMERA
                           : fields[0] == L"Image" ? GUID_DEVCLASS_IMAGE
                                                   : GUID_DEVCLASS_BLUETOOTH;
        devices.push_back(std::make_unique<PlantedDevice>(guid, fields[1].c_str()));
        devices.back()->With(SPDRP_SERVICE, fields[2]);
        if (!fields[3].empty())  // CONFIGFLAG_DISABLED
            devices.back()->With(SPDRP_CONFIGFLAGS, L"\x1");
    }
}

/// What the older function counts, where the sound service does not answer.
UINT PlantedMachine::CountWaveOutputs() const
{
    const std::wstring count = FieldsOf(machine.First(L"no-endpoints"), 2)[1];
    return count.empty() ? 7 : static_cast<UINT>(NumberOf(count));
}

void PlantedMachine::Run(const Lines& names)
{
    answering = &machine;
    const FakeSound endpoints(sound);
    PlantedGraphics graphics(machine);
    const DisplayConfig config(displays.Functions());
    const StorageFunctions disks = storage.devices.Functions();
    VolumeFunctions volumes = storage.volumes.Functions();
    volumes.listDisks = [&disks](const std::wstring& letter) { return ReadVolumeDisks(disks, letter); };
    OpticalDrives opticalDrives([&disks] { return ListOpticalDrives(disks); });
    DiskDrives diskDrives([&disks] { return ListDiskDrives(disks); });
    ScsiControllers controllers([] { return ListScsiControllers(SetupLib::Instance()); });
    CPUID chip([this](std::uint32_t leaf) { return leaves[leaf]; },
               [this] { return NumberOf(machine.First(L"xcr0"), 16); });
    const std::pair<const wchar_t*, std::function<void()>> detectors[] = {
        {L"CPU", [&] { CPU().Detect(chip, system.processors); }},
        {L"GPU", [&] { GPU().Detect(graphics.adapters); }},
        {L"Bios", [this] { Bios().Detect(system.firmware); }},
        {L"CDRom", [&] { CDRom().Detect(opticalDrives); }},
        {L"Chassis",
         [] {
             Chassis().Detect({&AnswerPower, &AnswerMetrics});
         }},
        {L"DirectX", [&] { DirectX().Detect(graphics.adapters); }},
        {L"DVD", [&] { DVD().Detect(opticalDrives); }},
        {L"Graphics", [&] { kel::Graphics().Detect(config); }},
        {L"HardDrive", [&] { HardDrive().Detect(diskDrives); }},
        {L"LogicalDrive", [&] { LogicalDrive().Detect(volumes, diskDrives); }},
        {L"MotherBoard", [] { MotherBoard().Detect(); }},
        {L"NetworkDevice", [this] { NetworkDevice().Detect(network.functions); }},
        {L"OS", [this] { OS().Detect(system.os); }},
        {L"Ram",
         [] {
             Ram().Detect({&AnswerMemory, &AnswerInstalled});
         }},
        {L"Sound", [this] { Sound().Detect({[this] { return CountWaveOutputs(); }}); }},
        {L"Software", [this] { Software().Detect(software.functions); }},
        {L"Browser", [this] { Browser().Detect(software.functions); }},
        {L"Monitor", [&] { Monitor().Detect(config); }},
        {L"Applications", [this] { Applications().Detect(software.functions); }},
        {L"SCSI", [&] { SCSI().Detect(controllers); }},
    };
    for (const auto& [name, detect] : detectors) {
        if (names.empty() || std::ranges::count(names, name) != 0)
            detect();
    }
    calls = graphics.fake.Calls();
    held = graphics.fake.References();
}

Detected PlantedMachine::Detect()
{
    TestSession session;
    session.wanted.Assign(machine.First(L"wanted"), L"", true);
    const LogCapture log(LogMaximum);
    Run(Split(machine.First(L"detectors"), L' '));

    Detected detected;
    detected.log = log.Lines();
    detected.stored = session.Lines(0, 73999);
    detected.reasons = ListReasons(session.values);
    std::wstring all;
    for (const unsigned number : session.Numbers())
        all += std::to_wstring(number) + L",";
    session.wanted.Assign(all, L"", true);
    XMLReport(session.values).GetReport(XMLReport::StandardOption, detected.report);
    detected.opened = storage.devices.opened;
    detected.letters = storage.volumes.opened;
    detected.calls = calls;
    detected.held = held + sound.references + static_cast<ULONG>(storage.devices.open);
    detected.isMisused = sound.isMisused || network.isMisused || ErrorModeCheck::isMissed;
    return detected;
}

}  // namespace kel::test
