#include "probes/cpu/SystemCpu.h"

#include <mmdeviceapi.h>

#include <windows.h>

#ifdef _MSC_VER
#include <intrin.h>
#else
#include <x86intrin.h>
#endif

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "diag/SourceFailures.h"
#include "diag/Timer.h"
#include "platform/Library.h"
#include "platform/LibraryPreload.h"
#include "platform/WindowsVersion.h"
#include "probes/Attempt.h"
#include "probes/cpu/CpuTopology.h"

namespace kel {

namespace {

constexpr DWORD VirtualizationFeature = 21;  // PF_VIRT_FIRMWARE_ENABLED
constexpr DWORD MaxTopologySize = 16 * 1024 * 1024;

/// What the detectors after this one load, and takes a while to load.
constexpr const wchar_t* LaterLibraries[] = {L"dxgi.dll",    L"msi.dll",      L"mmdevapi.dll",
                                             L"propsys.dll", L"iphlpapi.dll", L"winmm.dll",
                                             L"shell32.dll", L"powrprof.dll", L"tbs.dll"};
/// The list of the sound endpoints.
constexpr CLSID LaterClasses[] = {__uuidof(MMDeviceEnumerator)};
constexpr LibraryPreload::List Later = {LaterLibraries, LaterClasses};

/// The measurement takes a second, in which the libraries are loaded.
float MeasureWhileLoading()
{
    const LibraryPreload libraries(Later);
    return MeasureMegahertz();
}

std::optional<bool> AskFirmwareVirtualizes()
{
    const std::optional<OSVERSIONINFOEXW> version = ReadWindowsVersion();
    constexpr DWORD Windows8[] = {6, 2};
    if (!version || version->dwMajorVersion < Windows8[0] ||
        (version->dwMajorVersion == Windows8[0] && version->dwMinorVersion < Windows8[1]))
        return {};
    return IsProcessorFeaturePresent(VirtualizationFeature) != FALSE;
}

/// The records of all relationships; none when they cannot be read.
std::vector<std::byte> ReadTopology(const CpuFunctions& functions)
{
    DWORD size = 0;
    if (!functions.getTopology || functions.getTopology(RelationAll, nullptr, &size) ||
        size > MaxTopologySize)
        return {};
    std::vector<std::byte> records(size);
    auto* const first = reinterpret_cast<SYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX*>(records.data());
    if (size == 0 || !functions.getTopology(RelationAll, first, &size))
        return {};
    return records;
}

}  // namespace

CpuFunctions CpuFunctions::OfSystem()
{
    CpuFunctions functions;
    if (auto* const get = FindLoadedFunction<decltype(GetLogicalProcessorInformationEx)>(
            L"kernel32.dll", "GetLogicalProcessorInformationEx"))
        functions.getTopology = get;
    functions.firmwareVirtualizes = &AskFirmwareVirtualizes;
    functions.measureMegahertz = &MeasureWhileLoading;
    return functions;
}

void GetTopology(const CpuFunctions& functions, CpuInfo& info)
{
    Attempt(L"Error in CPU topology detection.", [&] {
        const std::vector<std::byte> records = ReadTopology(functions);
        if (records.empty())
            FailureScope::Note(L"GetLogicalProcessorInformationEx",
                               functions.getTopology ? GetLastError() : ERROR_PROC_NOT_FOUND);
        const CpuTopology topology = DecodeTopology(records);
        info.cores = topology.cores;
        info.threads = topology.threads;
        info.packages = topology.packages;
        info.efficientCores = topology.efficientCores;
        info.largestCache = topology.largestCache;
        info.firmwareVirtualizes = functions.firmwareVirtualizes();
    });
}

bool GetSystemCpuInfo(const CpuFunctions& functions, CpuInfo& info)
{
    Attempt(L"Error in system CPU detection.", [&] {
        SYSTEM_INFO system = {};
        GetSystemInfo(&system);
        info = DescribeProcessors(system.dwNumberOfProcessors, functions.measureMegahertz());
    });
    return true;
}

CpuInfo DescribeProcessors(DWORD count, float megahertz)
{
    CpuInfo info;
    info.processorCount = std::to_wstring(count);
    info.multiProcessor = count > 1;
    info.speed.Initialize((std::to_wstring(static_cast<unsigned>(megahertz)) + L" MHz").c_str());
    return info;
}

float MeasureMegahertz()
{
    const std::int64_t frequency = Timer::Frequency();
    if (frequency < 1)
        return 0.0F;
    const std::int64_t start = Timer::ReadCounter();
    std::int64_t now = start;
    const std::uint64_t first = __rdtsc();
    while (now > 0 && now - start < frequency)
        now = Timer::ReadCounter();
    const std::uint64_t last = __rdtsc();
    // The counter can go backwards when the machine wakes up or the thread moves to a processor that lags
    // behind.
    return now > 0 && last > first ? static_cast<float>(last - first) / 1000000.0F : 0.0F;
}

}  // namespace kel
