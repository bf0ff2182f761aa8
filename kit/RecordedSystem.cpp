#include "kit/RecordedSystem.h"

#include <windows.h>

#include <comutil.h>
#include <wrl/client.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "kit/Text.h"
#include "platform/RegistryValue.h"
#include "probes/Variant.h"
#include "probes/cpu/CPUID.h"
#include "probes/cpu/SystemCpu.h"
#include "probes/system/Battery.h"
#include "probes/system/Firmware.h"
#include "probes/system/Memory.h"
#include "probes/system/OSInfo.h"
#include "probes/wmi/WMI.h"
#include "service/Utf8.h"
#include "values/Size.h"

namespace kel::kit {

namespace {

using Lines = std::vector<std::string>;

constexpr int ClockId = 71062, MemoryId = 71063;
constexpr std::uint64_t Megabyte = 1 << 20;

constexpr std::uint32_t Leaves[] = {0, 1, 2, 7, 0x40000000, 0x40000003, 0x80000000, 0x80000001};

/// Keys below HKEY_LOCAL_MACHINE, and the values that the probes read there.
struct RecordedKey {
    const wchar_t* key;
    std::vector<const wchar_t*> values;
};

const RecordedKey Keys[] = {
    {L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0",
     {L"ProcessorNameString", L"~MHz", L"Platform ID", L"Update Signature"}},
    {L"SOFTWARE\\Intel\\Infinst", {L"version", L"infver"}},
    {L"HARDWARE\\DESCRIPTION\\System", {L"SystemBiosDate"}},
    {L"HARDWARE\\DESCRIPTION\\System\\BIOS",
     {L"BIOSVendor", L"BIOSVersion", L"BaseBoardVersion", L"SystemManufacturer", L"SystemProductName"}},
    {L"SYSTEM\\CurrentControlSet\\Control\\SecureBoot\\State", {L"UEFISecureBootEnabled"}},
    {L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion",
     {L"DisplayVersion", L"ReleaseId", L"EditionID", L"UBR"}},
};

/// Keys whose being there is a value.
constexpr const wchar_t* Marks[] = {
    L"Microsoft\\Windows\\CurrentVersion\\Component Based Servicing",
    L"Microsoft\\Windows\\CurrentVersion\\Component Based Servicing\\RebootPending",
    L"Microsoft\\Windows\\CurrentVersion\\WindowsUpdate\\Auto Update\\RebootRequired"};

/// Classes and the properties that the probes read.
struct RecordedClass {
    const wchar_t* name;
    std::vector<const wchar_t*> properties;
};

const RecordedClass Classes[] = {
    {L"Win32_Processor", {L"Name", L"Manufacturer", L"MaxClockSpeed", L"Caption"}},
    {L"Win32_BIOS", {L"name", L"Manufacturer", L"SMBIOSBIOSVersion"}},
    {L"Win32_BaseBoard", {L"Manufacturer", L"Product", L"Version"}}};

void RecordProcessor(const Snapshot& snapshot, Lines& lines)
{
    constexpr std::uint32_t UsesSavedState = 1U << 27;  // of ECX of leaf 1
    for (const std::uint32_t leaf : Leaves) {
        std::string line = "cpuid " + Hex(leaf);
        for (const std::uint32_t answer : RunCpuid(leaf))
            line += "|" + Hex(answer);
        lines.push_back(line);
    }
    if ((RunCpuid(1)[2] & UsesSavedState) != 0)
        lines.push_back("xcr0 " + Hex(RunXgetbv()));
    // The measurement differs each time; its rounded value does not.
    const std::vector<std::string> clock = SplitFields(snapshot.Text(ClockId), ' ');
    if (clock.size() == 2)
        lines.push_back("clock " + std::to_string(std::lround(std::strtod(clock[0].c_str(), nullptr) *
                                                              (clock[1] == "GHz" ? 1000 : 1))));
    CpuInfo info;
    GetTopology(CpuFunctions::OfSystem(), info);
    if (info.firmwareVirtualizes)
        lines.emplace_back(*info.firmwareVirtualizes ? "virtualization on" : "virtualization off");
    if (!info.cores || !info.threads || !info.packages || !info.efficientCores)
        return;
    const int fastCores = *info.cores - *info.efficientCores;
    lines.push_back("topology cores=" + std::to_string(*info.cores) + "|threads=" +
                    std::to_string((*info.threads - *info.efficientCores) / (fastCores > 0 ? fastCores : 1)) +
                    "|efficient=" + std::to_string(*info.efficientCores) +
                    "|packages=" + std::to_string(*info.packages) +
                    "|cache=" + std::to_string(info.largestCache ? info.largestCache->Bytes() >> 10 : 0));
}

void RecordSystemVersion(Lines& lines)
{
    const OSFunctions functions = OSFunctions::OfSystem();
    const OSInfo info = ReadOSInfo(functions);
    std::string line =
        "system major=" + std::to_string(info.major) + "|minor=" + std::to_string(info.minor) +
        "|build=" + std::to_string(info.build) + "|type=" + std::to_string(info.productType) +
        "|suite=" + std::to_string(info.suiteMask) + "|architecture=" + std::to_string(info.architecture) +
        "|edition=" + std::to_string(info.edition) + "|pack=" + std::to_string(info.servicePackMajor);
    if (!info.servicePack.empty())
        line += "|pack-text=" + ToUtf8(info.servicePack);
    if (info.isServerR2)
        line += "|r2=R2";
    if (const auto version = functions.getTrueVersion())
        line += "|true=" + std::to_string(version->dwMajorVersion) + "." +
                std::to_string(version->dwMinorVersion) + "." + std::to_string(version->dwBuildNumber);
    USHORT emulated = 0;
    USHORT native = 0;
    if (functions.isWow64Process2 && functions.isWow64Process2(GetCurrentProcess(), &emulated, &native))
        line += "|native=" + Hex(native);
    if (const auto elevation = functions.getElevation())
        line += "|elevation=" + std::to_string(*elevation);
    if (const auto attributes = functions.getAdministrators())
        line += "|administrators=" + Hex(*attributes);
    lines.push_back(line);
}

/// Of the two whole numbers of megabytes, the one that gives the text that the machine's bytes give.
std::string MegabytesOf(const Size& size, const std::string& text)
{
    const std::uint64_t below = size.Bytes() / Megabyte;
    const bool isBelow = text.empty() || ToUtf8(Size(below * Megabyte).ToString()) == text;
    return std::to_string(isBelow ? below : below + 1);
}

void RecordMemory(const Snapshot& snapshot, Lines& lines)
{
    const MemoryInfo info = ReadMemory(MemoryFunctions::OfSystem());
    std::string line = "memory " + MegabytesOf(info.totalPhysical, snapshot.Text(MemoryId)) + "|" +
                       MegabytesOf(info.totalVirtual, "") + "|" + MegabytesOf(info.availablePhysical, "");
    if (info.installed)
        line += "|" + MegabytesOf(*info.installed, "");
    lines.push_back(line);
}

void RecordFirmware(Lines& lines)
{
    const FirmwareFunctions functions = FirmwareFunctions::OfSystem();
    DWORD type = 0;
    if (!functions.getFirmwareType)
        lines.push_back("firmware error " + std::to_string(functions.getVariableError()));
    else if (functions.getFirmwareType(type) && (type == 1 || type == 2))
        lines.emplace_back(type == 2 ? "firmware UEFI" : "firmware BIOS");
    TpmInfo tpm = {1, 0, 0, 0};
    const std::uint32_t status = functions.getTpm(tpm);
    lines.push_back("tpm " + std::to_string(tpm.tpmVersion) + "|" + Hex(status));
}

void RecordChassis(Lines& lines)
{
    const ChassisFunctions functions = ChassisFunctions::OfSystem();
    SYSTEM_POWER_CAPABILITIES capabilities = {};
    if (functions.getPowerCapabilities == nullptr || !functions.getPowerCapabilities(&capabilities))
        lines.emplace_back("battery refused");
    else if (capabilities.SystemBatteriesPresent)
        lines.emplace_back(capabilities.BatteriesAreShortTerm ? "battery short" : "battery long");
    lines.push_back("touch " + std::to_string(functions.getSystemMetrics(SM_MAXIMUMTOUCHES)) + "|" +
                    Hex(static_cast<std::uint32_t>(functions.getSystemMetrics(SM_DIGITIZER))));
}

/// The form of a value in a line; nothing for one that a line cannot hold.
std::optional<std::string> FieldOf(const RegistryValue& value)
{
    if (value.type == REG_DWORD && value.bytes.size() == sizeof(DWORD)) {
        DWORD number = 0;
        std::memcpy(&number, value.bytes.data(), sizeof(number));
        return "#" + std::to_string(number);
    }
    if (value.type == REG_BINARY) {
        std::string bytes = "|";  // behind an empty text
        for (const auto byte : value.bytes)
            bytes += (bytes.size() > 1 ? " " : "") + Hex(static_cast<std::uint8_t>(byte));
        return bytes;
    }
    const std::string text = ToUtf8(value.Text());
    return text.find_first_of("|\n") == std::string::npos ? std::optional(text) : std::nullopt;
}

void RecordRegistry(Lines& lines)
{
    for (const RecordedKey& recorded : Keys) {
        const OwnedKey key = OpenKey(HKEY_LOCAL_MACHINE, recorded.key, KEY_READ | KEY_WOW64_64KEY);
        for (const wchar_t* const name : recorded.values) {
            const std::optional<RegistryValue> value = key ? ReadValue(key.get(), name) : std::nullopt;
            const std::optional<std::string> field = value ? FieldOf(*value) : std::nullopt;
            if (field)
                lines.push_back("value " + ToUtf8(recorded.key) + "|" + ToUtf8(name) + "|" + *field);
        }
    }
    for (const wchar_t* const mark : Marks) {
        if (OpenKey(HKEY_LOCAL_MACHINE, (std::wstring(L"SOFTWARE\\") + mark).c_str(),
                    KEY_READ | KEY_WOW64_64KEY))
            lines.push_back("64 " + ToUtf8(mark) + "|");
    }
}

void RecordWmi(Lines& lines)
{
    for (const RecordedClass& recorded : Classes) {
        Microsoft::WRL::ComPtr<IEnumWbemClassObject> objects;
        const std::wstring query = std::wstring(L"SELECT * FROM ") + recorded.name;
        if (!WMI::Instance().Query(query.c_str(), &objects) || !objects)
            continue;
        for (;;) {
            Microsoft::WRL::ComPtr<IWbemClassObject> object;
            ULONG returned = 0;
            if (objects->Next(static_cast<LONG>(WBEM_INFINITE), 1, &object, &returned) != WBEM_S_NO_ERROR)
                break;
            std::string line = "wmi " + ToUtf8(recorded.name);
            for (const wchar_t* const property : recorded.properties) {
                _variant_t value;
                if (!WMI::GetProperty(object.Get(), property, &value))
                    continue;
                const std::string text = ToUtf8(ShowVariant(value));
                if (text.find('|') == std::string::npos)
                    line += "|" + ToUtf8(property) + "=" + text;
            }
            lines.push_back(line);
        }
    }
}

}  // namespace

std::vector<std::string> RecordSystem(const Snapshot& snapshot)
{
    Lines lines;
    RecordProcessor(snapshot, lines);
    RecordSystemVersion(lines);
    RecordMemory(snapshot, lines);
    RecordFirmware(lines);
    RecordChassis(lines);
    RecordRegistry(lines);
    RecordWmi(lines);
    return lines;
}

}  // namespace kel::kit
