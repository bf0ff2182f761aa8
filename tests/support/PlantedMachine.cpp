#include "support/PlantedMachine.h"

#include <initguid.h>

#include <devguid.h>

#include <algorithm>
#include <bit>
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
#include "support/Edids.h"
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

/// The system's function, in the system's order or the opposite one.
BOOL WINAPI EnumDevices(HDEVINFO set, DWORD index, SP_DEVINFO_DATA* device)
{
    DWORD count = 0;
    while (areDevicesReversed && SetupDiEnumDeviceInfo(set, count, device))
        ++count;
    return SetupDiEnumDeviceInfo(set, index < count ? count - 1 - index : index, device);
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

}  // namespace

/// Why values are empty: those of the store, and those of the catalogue that it lacks.
static Lines ListReasons(const SystemValues& values)
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
    SetupLib::Instance().Change([](SetupEntryPoints& table) { table.enumDeviceInfo = &EnumDevices; });
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
        WmiProperties& object = wmi.objects[L"SELECT * FROM " + fields[0]].emplace_back();
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

void PlantedMachine::PlantGraphics()
{
    const std::wstring directX = L"SOFTWARE\\Microsoft\\DirectX";
    if (const std::wstring release = machine.First(L"release"); !release.empty())
        software.machineKeys.Write(directX, L"Version", release);
    for (const std::wstring& line : machine[L"graphics"]) {
        const Lines fields = FieldsOf(line, 11);
        devices.push_back(std::make_unique<PlantedDevice>(DisplayClass, fields[1].c_str()));
        devices.back()
            ->With(SPDRP_HARDWAREID, DeviceID(fields[1]).ToString())
            .With(SPDRP_DEVICEDESC, fields[0])
            .Device(L"MatchingDeviceId", fields[3])
            .Driver(L"DriverVersion", fields[2])
            .InState(fields[6]);
        constexpr const wchar_t* Texts[] = {L"DriverDate", L"VulkanDriverName", L"RadeonSoftwareVersion"};
        for (std::size_t text = 0; text < std::size(Texts); ++text) {
            if (!fields[7 + text].empty())
                devices.back()->Driver(Texts[text], fields[7 + text]);
        }
        if (!fields[10].empty())
            devices.back()->DriverBytes(L"HardwareInformation.ChipType", fields[10]);
        constexpr const wchar_t* Amounts[] = {L"HardwareInformation.qwMemorySize",
                                              L"HardwareInformation.MemorySize"};
        for (std::size_t amount = 0; amount < 2; ++amount) {
            if (!fields[4 + amount].empty())
                devices.back()->Driver(Amounts[amount], NumberOf(fields[4 + amount]) << 20, nullptr);
        }
    }
    for (const std::wstring& line : machine[L"note"]) {
        const Lines fields = FieldsOf(line, 7);
        const auto write = [&](const wchar_t* name, DWORD type, std::uint64_t number) {
            software.machineKeys.Write(directX + L"\\{" + fields[0] + L"}", name, type, &number,
                                       type == REG_QWORD ? 8 : 4);
        };
        write(L"AdapterLuid", REG_QWORD, 7ULL << 32 | NumberOf(fields[0]));
        write(L"DriverVersion", REG_QWORD, 0x9000800070006);
        write(L"VendorId", REG_DWORD, NumberOf(fields[1], 16));
        write(L"DeviceId", REG_DWORD, NumberOf(fields[2], 16));
        write(L"MaxD3D11FeatureLevel", REG_DWORD, NumberOf(fields[3], 16));
        write(L"DedicatedVideoMemory", REG_QWORD, NumberOf(fields[4]) << 20);
        write(L"MaxD3D12FeatureLevel", REG_DWORD, NumberOf(fields[5], 16));
        software.machineKeys.Write(directX + L"\\{" + fields[0] + L"}", L"Description", fields[6]);
    }
}

void PlantedMachine::PlantDisplays()
{
    for (const std::wstring& line : machine[L"screen"]) {
        const Lines fields = FieldsOf(line, 16);
        const auto number = [&fields](std::size_t place, int base = 10) {
            return static_cast<UINT32>(NumberOf(fields[place], base));
        };
        displays.screens.push_back({number(0),
                                    std::stol(fields[1]),
                                    std::stol(fields[2]),
                                    number(3),
                                    number(4),
                                    {number(5), number(6)},
                                    number(7, 16),
                                    fields[8],
                                    fields[9],
                                    fields[10].empty() ? -1 : std::stoi(fields[10]),
                                    fields[11].empty() ? DISPLAYCONFIG_PIXELFORMAT_32BPP : number(11),
                                    std::bit_cast<LUID>(NumberOf(fields[12], 16))});
        Screen& screen = displays.screens.back();
        screen.preferred.Initialize(fields[13].c_str());
        screen.isHdr2 = fields[14].empty() ? -1 : std::stoi(fields[14]);
        screen.modes = fields[15];
    }
    for (const std::wstring& what : machine[L"displays"]) {
        displays.isRemote |= what == L"remote";
        displays.hasPaths &= what != L"without paths";
        displays.hasDevices &= what != L"without devices";
        displays.shortAnswers += what == L"one more between two calls";
    }
    if (const std::wstring name = machine.First(L"device-name"); !name.empty())
        displays.deviceName = name;
    if (const std::wstring dpi = machine.First(L"dpi"); !dpi.empty())
        displays.dpi = static_cast<UINT>(NumberOf(dpi));
    if (const Lines sessions = FieldsOf(machine.First(L"session"), 2); !sessions[0].empty()) {
        const auto own = static_cast<DWORD>(NumberOf(sessions[1]));
        displays.session = static_cast<DWORD>(NumberOf(sessions[0]));
        software.machineKeys.Write(L"SYSTEM\\CurrentControlSet\\Control\\Terminal Server", L"GlassSessionId",
                                   REG_DWORD, &own, sizeof(own));
    }
    for (const std::wstring& line : machine[L"monitor"]) {
        const Lines fields = FieldsOf(line, 3);
        devices.push_back(std::make_unique<PlantedDevice>(MonitorClass, fields[0].c_str()));
        devices.back()->With(SPDRP_FRIENDLYNAME, fields[1]);
        if (!fields[2].empty())
            devices.back()->Device(L"x", L"").Driver(L"MatchingDeviceId", fields[2]);
    }
    static const std::vector<Edid> edids = ReadEdids();
    for (const std::wstring& line : machine[L"edid"]) {
        const Lines fields = FieldsOf(line, 2);
        const auto& bytes = std::ranges::find(edids, Narrow(fields[1]), &Edid::source)->bytes;
        software.machineKeys.Write(L"SYSTEM\\CurrentControlSet\\Enum\\" + fields[0] + L"\\Device Parameters",
                                   L"EDID", REG_BINARY, bytes.data(), bytes.size());
    }
}

void PlantedMachine::PlantSound()
{
    wmi.objects[L"SELECT * FROM Win32_SoundDevice"] = soundDevices.wmi;
    for (const std::wstring& output : machine[L"output*"])
        sound.endpoints.push_back({eRender, output});
    sound.defaultOutput = static_cast<int>(sound.endpoints.size()) - 1;
    for (const std::wstring& output : machine[L"output"])
        sound.endpoints.push_back({eRender, output});
    for (const std::wstring& input : machine[L"input"])
        sound.endpoints.push_back({eCapture, FieldsOf(input, 2)[0], FieldsOf(input, 2)[1]});
    const auto failure = [this](const wchar_t* word, HRESULT otherwise) {
        const std::wstring field = machine.First(word);
        return field.empty() ? otherwise : static_cast<HRESULT>(NumberOf(field, 16));
    };
    sound.enumerate = failure(L"no-endpoints", S_OK);
    sound.getDefault = failure(L"no-default", HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
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
        {L"Sound", [] { Sound().Detect({[] { return 7U; }}); }},
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
    session.wanted.Assign(machine.First(L"wanted"), L"");
    const LogCapture log(LogMaximum);
    Run(Split(machine.First(L"detectors"), L' '));

    Detected detected;
    detected.log = log.Lines();
    detected.stored = session.Lines(0, 73999);
    detected.reasons = ListReasons(session.values);
    std::wstring all;
    for (const unsigned number : session.Numbers())
        all += std::to_wstring(number) + L",";
    session.wanted.Assign(all, L"");
    XMLReport(session.values).GetReport(XMLReport::StandardOption, detected.report);
    detected.opened = storage.devices.opened;
    detected.letters = storage.volumes.opened;
    detected.calls = calls;
    detected.held = held + sound.references + static_cast<ULONG>(storage.devices.open);
    detected.isMisused = sound.isMisused || network.isMisused || ErrorModeCheck::isMissed;
    return detected;
}

}  // namespace kel::test
