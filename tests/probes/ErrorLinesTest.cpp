// The line that each source logs when it throws: of its own functions one throws, or an allocation fails.
#include <gmock/gmock.h>

#include <functional>

#include "probes/cpu/CPUID.h"
#include "probes/cpu/SystemCpu.h"
#include "probes/graphics/AdapterCache.h"
#include "probes/graphics/DXGI.h"
#include "probes/graphics/DisplayConfig.h"
#include "probes/network/NetworkInterfaces.h"
#include "probes/software/DotNet.h"
#include "probes/sound/SoundEndpoints.h"
#include "probes/storage/Disks.h"
#include "probes/storage/Volumes.h"
#include "probes/system/Registry.h"
#include "support/FailingAllocation.h"
#include "support/FakeSound.h"
#include "support/LogCapture.h"
#include "support/ScratchKey.h"
#include "values/Bandwidth.h"
#include "values/Count.h"
#include "values/Size.h"
#include "values/Speed.h"

namespace kel {
namespace {

/// Boost's functions throw without a target.
const StorageFunctions NoStorage;

StorageFunctions OneDisk()
{
    StorageFunctions functions;
    functions.queryDosDevice = [](const wchar_t*, std::span<wchar_t> names) {
        constexpr std::wstring_view Name(L"PhysicalDrive0\0", 16);
        std::ranges::copy(Name, names.begin());
        return static_cast<DWORD>(Name.size());
    };
    return functions;
}

DWORD ListOneInterface(MIB_IF_TABLE2** result)
{
    static MIB_IF_TABLE2 table = {};
    table.NumEntries = 1;
    table.Table[0].TransmitLinkSpeed = 1234500000;
    *result = &table;
    return NO_ERROR;
}

Speed SomeSpeed()
{
    Speed speed;
    speed.Initialize(L"345 MHz");
    return speed;
}

struct ThrowingSource {
    const wchar_t* line;
    std::function<void()> read;
};

BiosInfo readBios;
BoardInfo readBoard;
CpuInfo readCpu;

const ThrowingSource ThrowingSources[] = {
    {L"WARN Error while initializing Size type with value: 100.5 GB", [] { Size().Initialize(L"100.5 GB"); }},
    {L"WARN Error while formatting size string.", [] { Size(std::uint64_t{1023} << 40).ToString(); }},
    {L"WARN Error while initializing Speed", [] { Speed().Initialize(L"3456.7 MHz"); }},
    {L"WARN Error while formatting size string.", [] { SomeSpeed().ToString(); }},
    {L"WARN Error while initializing Bandwidth", [] { Bandwidth(L"123.4 Mbps"); }},
    {L"WARN Error while formatting bandwidth string.", [] { Bandwidth(L"123.4 Mbps").ToString(); }},
    {L"WARN Error in Count ToString.", [] { Count(4123456789U).ToString(); }},
    {L"ERR Error in CPU topology detection.", [] { GetTopology({}, readCpu); }},
    {L"ERR Error in system CPU detection.", [] { GetSystemCpuInfo({}, readCpu); }},
    {L"ERR Error in cpuid detection.",
     [] { CPUID([](std::uint32_t) { return CpuRegisters{}; }, [] { return 0U; }).GetCpuInfo(readCpu); }},
    {L"ERR Error in Registry CPU detection.", [] { Registry::Instance().GetCpuInfo(readCpu); }},
    {L"ERR Error in Registry BIOS detection.", [] { Registry::Instance().GetBiosInfo(readBios); }},
    {L"ERR Error in Registry board detection.", [] { Registry::Instance().GetBoardInfo(readBoard); }},
    {L"ERR Error in reading the sound endpoints.", [] { ReadSoundEndpoints(); }},
    {L"ERR Error while looking for the default route.",
     [] {
         FindDefaultRoute({{}, {}, {}, [](auto...) -> DWORD { throw 1; }});
     }},
    {L"ERR Error in reading the adapters' addresses.",
     [] {
         ReadAdapterAddresses({{}, {}, [](auto...) -> ULONG { throw 1; }, {}}, {});
     }},
    {L"WARN Error while reading a link speed.",
     [] {
         ReadInterfaceTable({&ListOneInterface, [](void*) {}, {}, {}}, {});
     }},
    {L"ERR Error in the list of disks.", [] { ListDisks(NoStorage); }},
    {L"ERR Error in a disk's answers.", [] { ListDisks(OneDisk()); }},
    {L"ERR Error in a disk's number.", [] { ReadDiskNumber(NoStorage, L"PCI\\1\\2"); }},
    {L"ERR Error in the disks of Windows.", [] { ReadWindowsDisks(NoStorage); }},
    {L"ERR Error in the list of volumes.", [] { ListVolumes({}); }},
    {L"ERR Error in the volume of the profile.", [] { FindProfileVolume({}, {}); }},
    {L"ERR Error in DXGI detection.", [] { DXGI(GraphicsFunctions()).ListAdapters(); }},
    {L"ERR Error in the adapter cache.",
     [] {
         std::vector<GpuInfo> adapters;
         ReadAdapterCache(adapters);
     }},
    {L"ERR Error in display detection.", [] { DisplayConfig(DisplayFunctions()).List(); }},
    {L"ERR Error in .NET Framework detection.", [] { ReadFrameworkVersion(); }},
};

TEST(Sources, LogTheirLineWhenTheyThrow)
{
    const test::ScratchKey machine(HKEY_LOCAL_MACHINE);
    for (const wchar_t* name : {L"BIOSVendor", L"BIOSVersion", L"BaseBoardVersion", L"Platform ID"}) {
        machine.Write(L"HARDWARE\\DESCRIPTION\\System\\BIOS", name, L"1.0");
        machine.Write(L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", name, L"1.0");
    }
    machine.Write(L"SOFTWARE\\Microsoft\\DirectX\\1", L"Description", L"A card");
    machine.Write(L"SOFTWARE\\Microsoft\\NET Framework Setup\\NDP\\v4", L"Version", L"4.0");
    test::FakeSoundData data;
    data.endpoints = {{eRender, L"{1}.HDAUDIO\\FUNC_01"}};
    const test::FakeSound sound(data);
    for (const ThrowingSource& source : ThrowingSources) {
        const std::wstring line = source.line;
        const test::LogCapture level(line.starts_with(L"ERR") ? LogError : LogWarning);
        const std::size_t start = Log::Instance().GetText().size();
        bool hasFailed = true;
        for (int place = 1; hasFailed && place < 1000; ++place) {
            const test::FailingAllocation failure(place);
            try {
                source.read();
            } catch (const std::bad_alloc&) {
                continue;  // outside the guarded part, which is for the caller
            }
            hasFailed = test::FailingAllocation::IsOver();
        }
        // As text: where the log has no memory, a line lacks its beginning or its end.
        EXPECT_THAT(Log::Instance().GetText().substr(start),
                    testing::HasSubstr(line.substr(line.find(L' ') + 1) + L'\n'));
    }
}

}  // namespace
}  // namespace kel
