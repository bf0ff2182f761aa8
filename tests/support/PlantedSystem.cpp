#include "support/PlantedSystem.h"

#include <gtest/gtest.h>

#include <vector>

namespace kel::test {

namespace {

/// The records of the machine's cores, packages and caches.
std::vector<SYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX> MakeTopology(const Machine& machine)
{
    std::vector<SYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX> records;
    const Lines fields = FieldsOf(machine.First(L"topology"), 6);
    const auto add = [&records](LOGICAL_PROCESSOR_RELATIONSHIP kind) -> auto&
    {
        SYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX& record = records.emplace_back();
        record.Relationship = kind;
        record.Size = sizeof(record);
        return record;
    };
    const std::uint64_t efficient = NumberOf(fields[2]);
    const std::uint64_t cores = NumberOf(fields[0]);
    for (std::uint64_t core = 0; core < cores; ++core) {
        PROCESSOR_RELATIONSHIP& processor = add(RelationProcessorCore).Processor;
        (&processor.Flags)[1] = efficient > 0 && core >= efficient ? 1 : 0;  // EfficiencyClass
        processor.GroupCount = 1;
        // The slow cores stand first and have one thread each.
        processor.GroupMask[0].Mask = core < efficient ? 1 : (1ULL << NumberOf(fields[1])) - 1;
    }
    for (std::uint64_t package = 0; package < NumberOf(fields[3]); ++package)
        add(RelationProcessorPackage);
    for (const std::wstring& kilobytes : Split(fields[4], L' '))
        add(RelationCache).Cache.CacheSize = static_cast<DWORD>(NumberOf(kilobytes) << 10);
    return records;
}

CpuFunctions MakeProcessors(const Machine& machine)
{
    CpuFunctions functions;
    functions.getTopology = [records = MakeTopology(machine)](auto, auto* target, DWORD* size) -> BOOL {
        const auto whole = static_cast<DWORD>(records.size() * sizeof(records[0]));
        const bool isRead = target != nullptr && *size >= whole;
        if (isRead)
            std::ranges::copy(records, target);
        *size = whole;
        return isRead;
    };
    functions.firmwareVirtualizes = [on = machine.First(L"virtualization")]() -> std::optional<bool> {
        return on.empty() ? std::nullopt : std::optional(on == L"on");
    };
    functions.measureMegahertz = [clock = NumberOf(machine.First(L"clock"))] {
        return static_cast<float>(clock);
    };
    return functions;
}

FirmwareFunctions MakeFirmware(const Machine& machine)
{
    FirmwareFunctions functions;
    const std::wstring kind = machine.First(L"firmware");
    if (!kind.starts_with(L"error"))
        functions.getFirmwareType = [kind](DWORD& type) {
            return type = kind == L"UEFI" ? 2 : kind == L"BIOS", TRUE;
        };
    functions.getVariableError = [kind] { return static_cast<DWORD>(NumberOf(kind.substr(6))); };
    functions.getTpm = [tpm = FieldsOf(machine.First(L"tpm"), 2)](TpmInfo& info) {
        EXPECT_EQ(info.structVersion, 1U);
        info.tpmVersion = static_cast<std::uint32_t>(NumberOf(tpm[0]));
        return tpm[0].empty() ? 0x80284008 : static_cast<std::uint32_t>(NumberOf(tpm[1], 16));
    };
    return functions;
}

}  // namespace

PlantedSystem::PlantedSystem(const Machine& machine)
    : processors(MakeProcessors(machine)), firmware(MakeFirmware(machine))
{
    const Lines fields = FieldsOf(machine.First(L"system"), 14);
    if (fields[0].empty())
        return;
    const Lines trueVersion = fields[10].empty() ? Lines() : Split(fields[10], L'.');
    os.getTrueVersion = [trueVersion, type = fields[3]]() -> std::optional<OSVERSIONINFOEXW> {
        if (trueVersion.empty())
            return {};
        OSVERSIONINFOEXW info = {};
        info.dwMajorVersion = static_cast<DWORD>(NumberOf(trueVersion[0]));
        info.dwMinorVersion = static_cast<DWORD>(NumberOf(trueVersion[1]));
        info.dwBuildNumber = static_cast<DWORD>(NumberOf(trueVersion[2]));
        info.wProductType = static_cast<BYTE>(NumberOf(type));
        return info;
    };
    os.isWow64Process2 = [native = fields[11]](HANDLE, USHORT*, USHORT* answer) {
        *answer = static_cast<USHORT>(NumberOf(native, 16));
        return !native.empty();
    };
    os.getElevation = [type = fields[12]]() -> std::optional<TOKEN_ELEVATION_TYPE> {
        if (type.empty())
            return {};
        return static_cast<TOKEN_ELEVATION_TYPE>(NumberOf(type));
    };
    os.getAdministrators = [attributes = fields[13]]() -> std::optional<DWORD> {
        return attributes.empty() ? std::nullopt
                                  : std::optional(static_cast<DWORD>(NumberOf(attributes, 16)));
    };
    os.getVersion = [fields](OSVERSIONINFOEXW& version) {
        version.dwPlatformId = VER_PLATFORM_WIN32_NT;
        version.dwMajorVersion = static_cast<DWORD>(NumberOf(fields[0]));
        version.dwMinorVersion = static_cast<DWORD>(NumberOf(fields[1]));
        version.dwBuildNumber = static_cast<DWORD>(NumberOf(fields[2]));
        version.wProductType = static_cast<BYTE>(NumberOf(fields[3]));
        version.wSuiteMask = static_cast<WORD>(NumberOf(fields[4]));
        version.wServicePackMajor = static_cast<WORD>(NumberOf(fields[7]));
        wcscpy(version.szCSDVersion, fields[8].c_str());
        return TRUE;
    };
    os.getSystemMetrics = [fields](int metric) {
        return metric == SM_SERVERR2 && fields[9] == L"R2" ? 1 : 0;
    };
    os.getNativeSystemInfo = [fields](SYSTEM_INFO& info) {
        info.wProcessorArchitecture = static_cast<WORD>(NumberOf(fields[5]));
    };
    os.getProductInfo = [fields](DWORD major, DWORD minor, DWORD, DWORD, DWORD* edition) {
        const bool isPlanted = major == NumberOf(fields[0]) && minor == NumberOf(fields[1]);
        return *edition = isPlanted ? static_cast<DWORD>(NumberOf(fields[6])) : 0, TRUE;
    };
}

}  // namespace kel::test
