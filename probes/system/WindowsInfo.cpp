#include "probes/system/WindowsInfo.h"

#include <cstring>
#include <string>

#include "diag/SourceFailures.h"
#include "platform/RegistryValue.h"
#include "probes/system/WindowsRelease.h"

namespace kel {

namespace {

constexpr const wchar_t* VersionKey = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
constexpr const wchar_t* ServicingKey =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Component Based Servicing";
constexpr const wchar_t* ServicingRestartKey =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Component Based Servicing\\RebootPending";
constexpr const wchar_t* UpdateRestartKey =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\WindowsUpdate\\Auto Update\\RebootRequired";
constexpr std::size_t MaxVersionTextSize = 256;  // bytes
constexpr BYTE Workstation = 1;

struct Machine {
    WORD architecture;  // as GetNativeSystemInfo gives it
    USHORT machine;
    const wchar_t* name;
};

constexpr Machine Machines[] = {
    {PROCESSOR_ARCHITECTURE_AMD64, IMAGE_FILE_MACHINE_AMD64, L"x64"},
    {PROCESSOR_ARCHITECTURE_ARM64, IMAGE_FILE_MACHINE_ARM64, L"ARM64"},
    {PROCESSOR_ARCHITECTURE_INTEL, IMAGE_FILE_MACHINE_I386, L"x86"},
};

std::wstring NameMachine(USHORT machine)
{
    for (const Machine& row : Machines) {
        if (row.machine == machine)
            return row.name;
    }
    return {};
}

OwnedKey OpenMachineKey(const wchar_t* key)
{
    return OpenKey(HKEY_LOCAL_MACHINE, key, KEY_READ | KEY_WOW64_64KEY);
}

void ReadVersionKey(WindowsInfo& info, bool asksRevision)
{
    const OwnedKey key = OpenMachineKey(VersionKey);
    if (!key)
        return;
    const auto read = [&key](const wchar_t* name) {
        std::wstring text;
        ReadStringValue(key.get(), name, MaxVersionTextSize, text);
        return Name(text);
    };
    info.featureUpdate = read(L"DisplayVersion");
    // ReleaseId has stayed at 2009 since DisplayVersion exists.
    if (!info.featureUpdate.HasValue())
        info.featureUpdate = read(L"ReleaseId");
    info.edition = read(L"EditionID");
    const std::optional<RegistryValue> revision = asksRevision ? ReadValue(key.get(), L"UBR") : std::nullopt;
    if (revision && revision->type == REG_DWORD && revision->bytes.size() == sizeof(std::int32_t)) {
        std::int32_t number = 0;
        std::memcpy(&number, revision->bytes.data(), sizeof(number));
        info.revision = number;
    }
}

/// For an administrator, UAC leaves the group Administrators in the token as deny-only; the user's consent
/// enables it.
std::optional<bool> CanAdminister(const OSFunctions& functions)
{
    const std::optional<DWORD> attributes = functions.getAdministrators();
    if (!attributes || *attributes == 0 || (*attributes & SE_GROUP_ENABLED) != 0)
        return attributes ? std::optional(*attributes != 0) : std::nullopt;
    const std::optional<TOKEN_ELEVATION_TYPE> type = functions.getElevation();
    return type ? std::optional(*type == TokenElevationTypeLimited) : std::nullopt;
}

/// Every Windows has the key of servicing; if it cannot be opened, the answer is unknown.
std::optional<bool> IsRestartPending()
{
    if (OpenMachineKey(ServicingRestartKey) || OpenMachineKey(UpdateRestartKey))
        return true;
    return OpenMachineKey(ServicingKey) ? std::optional(false) : std::nullopt;
}

}  // namespace

USHORT ReadNativeMachine(const OSFunctions& functions)
{
    USHORT emulated = 0;
    USHORT native = 0;
    if (functions.isWow64Process2 && functions.isWow64Process2(GetCurrentProcess(), &emulated, &native))
        return native;
    SYSTEM_INFO system = {};
    if (functions.getNativeSystemInfo)
        functions.getNativeSystemInfo(system);
    else
        GetSystemInfo(&system);
    for (const Machine& row : Machines) {
        if (row.architecture == system.wProcessorArchitecture)
            return row.machine;
    }
    return 0;
}

WindowsInfo ReadWindowsInfo(const OSFunctions& functions, bool asksRevision)
{
    WindowsInfo info;
    ReadVersionKey(info, asksRevision);
    if (const std::optional<OSVERSIONINFOEXW> version = functions.getTrueVersion()) {
        info.version = Version(std::to_wstring(version->dwMajorVersion) + L"." +
                               std::to_wstring(version->dwMinorVersion) + L"." +
                               std::to_wstring(version->dwBuildNumber));
        info.release = Name(NameRelease(*version));
        info.isServer = version->wProductType != Workstation;
    } else {
        FailureScope::Note(L"RtlGetVersion", ERROR_SUCCESS);
    }
    info.architecture = Name(NameMachine(ReadNativeMachine(functions)));
    info.canAdminister = CanAdminister(functions);
    if (!info.canAdminister)
        FailureScope::Note(L"GetTokenInformation", ERROR_SUCCESS);
    info.isRestartPending = IsRestartPending();
    return info;
}

}  // namespace kel
