// Measures the detectors of devices and software on machines that the tests' support plants, with few devices
// and with many, and on this one; and the code that asks for graphics adapters. Its first argument says what
// is measured; main() lists the choices. The log is off.
#include <algorithm>
#include <cstdlib>
#include <functional>

#include "Measure.h"
#include "client/Hosts.h"
#include "detectors/Detectors.h"
#include "detectors/GraphicsAdapters.h"
#include "diag/Log.h"
#include "probes/graphics/AdapterKind.h"
#include "probes/graphics/DisplayConfig.h"
#include "probes/setup/SetupLib.h"
#include "probes/storage/StorageFunctions.h"
#include "support/PlantedMachine.h"
#include "support/TestSession.h"
#include "values/Text.h"

namespace kel::bench {
namespace {

using test::Lines;

constexpr int Repetitions = 5;
constexpr const wchar_t* NoDetector = L"-";

/// Devices of one kind: the lines of one device, with "%" for its number and "@" for a letter.
struct Kind {
    const wchar_t* detectors;
    const wchar_t* lines;
    unsigned countId = 0;  ///< of the fact that holds the count
};

constexpr Kind Kinds[] = {
    {L"GPU DirectX",
     L"card key=%|name=Card %|vendor=10de|device=10%|subsystem=88ef1043|dedicated=8192|shared=8192|flags=0|"
     L"level11=c100|level12=c200|shader=66|wddm=3100|driver=0\n"
     L"graphics name=Card %|instance=PCI\\VEN_10DE&DEV_10%&SUBSYS_88EF1043&REV_A1\\4&%|version=32.0.15.7628",
     72001},
    {L"CDRom DVD",
     L"optical instance=SCSI\\CDROM&VEN_X\\5&%|hardware=SCSI\\CdRomX|name=DVDRAM "
     L"%|number=%|bus=11|product=DVDRAM %|"
     L"profiles=43 10",
     72101},
    {L"Graphics Monitor",
     L"screen picture=%|x=%00|y=0|width=1920|height=1080|rate=60000|per=1001|connector=A|name=Monitor %|"
     L"instance=DISPLAY#DELA0BE#5&%&UID|hdr=1\n"
     L"edid DISPLAY\\DELA0BE\\5&%&UID|dell-p2415q-dp",
     73101},
    {L"HardDrive",
     L"disk bus=17|product=Disk %|revision=1|bytes=1000204886016|seek=still|model=Disk % in full\n"
     L"disk-device SCSI\\DISK&VEN_NVME\\5&%|SCSI\\DiskNVMe____Disk_%|Disk % in full|%",
     72501},
    {L"LogicalDrive", L"volume letter=@|type=3|system=NTFS|gigabytes=900|free=300", 72601},
    {L"NetworkDevice",
     L"adapter instance=PCI\\VEN_10EC&DEV_81%&SUBSYS_84321043&REV_06\\4&%|name=Adapter %|type=6|medium=14|"
     L"flags=HC|state=1|speed=1000000000",
     72701},
    {L"Sound",
     L"sound HDAUDIO\\FUNC_01&VEN_10EC&DEV_02%\\4&%|Codec %\noutput "
     L"{1}.HDAUDIO\\FUNC_01&VEN_10EC&DEV_02%\\4&%",
     72801},
    {L"SCSI", L"controller PCI\\VEN_1000&DEV_00%|Controller %|PCI\\CC_010400|10.0.1.%", 73301},
    {L"Software Browser Applications",
     L"64 U:Program %|DisplayName=Program %|DisplayVersion=1.%|Publisher=Maker %|"
     L"InstallLocation=C:\\Program Files\\Program %"},
};

bool Has(const Kind& kind, const std::wstring& name)
{
    return std::ranges::count(test::Split(kind.detectors, L' '), name) != 0;
}

/// Adds the given number of devices of a kind.
void Plant(test::Machine& machine, const Kind& kind, int count)
{
    std::wstring cards;
    const std::size_t digits = std::max<std::size_t>(2, std::to_wstring(count - 1).size());
    for (int device = 0; device < count; ++device) {
        std::wstring number = std::to_wstring(device);
        number.insert(0, digits - number.size(), L'0');
        std::wstring lines = kind.lines;
        ReplaceAll(lines, L"%", number);
        ReplaceAll(lines, L"@", std::wstring(1, static_cast<wchar_t>(L'A' + device)));
        machine.Add(lines);
        cards += number + L"|";
    }
    if (Has(kind, L"GPU"))
        machine.Add(L"has " + cards);
}

/// Measures detectors on a machine with the given number of devices of their kinds. The first run, which
/// loads libraries, does not count, nor does the time of the fakes without a detector.
/// @return whether that many devices were found, if a fact holds the count
bool Planted(const Lines& names, int count)
{
    test::Machine machine;
    machine.Add(L"windows 0");
    for (const Kind& kind : Kinds) {
        if (std::ranges::any_of(names, [&kind](const std::wstring& name) { return Has(kind, name); }))
            Plant(machine, kind, count);
    }
    test::FakeWmiData wmi;
    const test::FakeWmi fakeWmi(wmi);
    test::PlantedMachine planted(machine, wmi);
    const auto run = [&planted, count](const Lines& chosen) {
        const test::TestSession session;
        planted.Run(chosen);
        return std::ranges::all_of(Kinds, [&](const Kind& kind) {
            const std::wstring found = session.Text(kind.countId);
            return found == L"(none)" || std::stoi(found) == count;
        });
    };
    const bool areFound = run(names);
    run({NoDetector});
    const double fakes = TimedMedian(Repetitions, [&] { run({NoDetector}); });
    Print("took", TimedMedian(Repetitions, [&] { run(names); }) - fakes);
    return areFound;
}

/// Measures these detectors, or all, on this machine. The first run, which loads libraries, does not count;
/// lists that several detectors share are rebuilt by the first of them.
void Here(const Lines& names, const std::wstring& wanted)
{
    const std::pair<const wchar_t*, std::function<void()>> detectors[] = {
        {L"GPU",
         [] {
             GraphicsAdapters adapters;
             GPU().Detect(adapters);
         }},
        {L"CDRom",
         [] {
             OpticalDrives drives([] { return ListOpticalDrives(StorageFunctions::OfSystem()); });
             CDRom().Detect(drives);
         }},
        {L"DirectX", [] { DirectX().Detect(); }},
        {L"DVD", [] { DVD().Detect(); }},
        {L"Graphics", [] { Graphics().Detect(); }},
        {L"HardDrive",
         [] {
             DiskDrives drives([] { return ListDiskDrives(StorageFunctions::OfSystem()); });
             HardDrive().Detect(drives);
         }},
        {L"LogicalDrive", [] { LogicalDrive().Detect(); }},
        {L"NetworkDevice", [] { NetworkDevice().Detect(); }},
        {L"Sound", [] { Sound().Detect(); }},
        {L"Software", [] { Software().Detect(); }},
        {L"Browser", [] { Browser().Detect(); }},
        {L"Monitor", [] { Monitor().Detect(); }},
        {L"Applications", [] { Applications().Detect(); }},
        {L"SCSI",
         [] {
             ScsiControllers controllers([] { return ListScsiControllers(SetupLib::Instance()); });
             SCSI().Detect(controllers);
         }},
    };
    test::TestSession session;
    session.wanted.Assign(wanted, L"", true);
    for (const auto& [name, detect] : detectors) {
        if (!names.empty() && std::ranges::count(names, name) == 0)
            continue;
        detect();
        Print(test::Narrow(name), TimedMedian(Repetitions, detect));
    }
}

/// Measures the probes that ask for the graphics adapters: the first call, which loads the library, and later
/// ones.
/// @return whether there is an adapter, without which nothing can be measured
bool Probes()
{
    const GraphicsProbes probes = GraphicsProbes::OfSystem();
    std::vector<DXGI::Adapter> adapters;
    std::vector<GpuInfo> listed;
    const auto measure = [](const std::string& name, const auto& call) {
        Print("first." + name, Timed(call));
        Print("again." + name, TimedMedian(Repetitions, call));
    };
    measure("dxgi", [&] { adapters = probes.dxgi.ListAdapters(); });
    measure("cache", [&] { probes.readCache(listed); });
    measure("setup", [&] { probes.listDevices(listed); });
    measure("paths", [] { DisplayConfig::Instance().List(); });
    if (adapters.empty())
        return false;
    IDXGIAdapter1* const adapter = adapters.front().adapter.Get();
    DXGI_ADAPTER_DESC1 description = {};
    adapter->GetDesc1(&description);
    measure("dxcore", [&] { IsIntegratedByDxCore(description.AdapterLuid); });
    measure("d3d9", [&] { probes.directX9.GetGpuInfo(listed); });
    measure("d3d10", [&] { probes.directX10.GetFeatureLevel(adapter, L""); });
    measure("d3d11", [&] { probes.directX11.GetFeatureLevel(adapter, L""); });
    measure("d3d12", [&] { probes.directX12.GetFeatureLevel(adapter, L"", 0); });
    measure("model", [&] { probes.directX12.GetShaderModel(adapter, L""); });
    measure("dxdiag", [&] { probes.dxDiag.GetGpuInfo(listed); });
    return true;
}

}  // namespace
}  // namespace kel::bench

int main(int count, char** arguments)
{
    using namespace kel::bench;
    const auto argument = [&](int place) {
        const std::string text = count > place ? arguments[place] : "";
        return std::wstring(text.begin(), text.end());
    };
    const std::wstring what = argument(1);
    const kel::test::Lines names = kel::test::Split(argument(2), L',');
    const kel::test::Apartment apartment;
    kel::Log::Instance().SetLevel(kel::LogOff);
    bool isDone = what == L"here";
    if (isDone)
        Here(names, argument(3));
    else if (what == L"planted" && count > 3)
        isDone = Planted(names, std::atoi(arguments[3]));
    else if (what == L"probes")
        isDone = Probes();
    return isDone ? EXIT_SUCCESS : EXIT_FAILURE;
}
