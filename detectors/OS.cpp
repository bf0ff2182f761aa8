#include "detectors/OS.h"

#include <array>
#include <cwchar>

#include "detectors/MachineIdentifier.h"
#include "detectors/OSIds.h"
#include "detectors/OSName.h"
#include "diag/Owners.h"
#include "probes/Registry.h"
#include "values/Exists.h"
#include "values/Hexadecimal.h"
#include "values/Name.h"
#include "values/Version.h"

namespace kel {

namespace {

using namespace OSIds;

constexpr unsigned Flags[] = {
    Windows2000Id,     Server2003Id,     Is64BitId,          X64Id,           ItaniumId,   Unused1Id,
    Unused2Id,         Unused3Id,        Unused4Id,          Unused5Id,       VistaId,     VistaBusinessId,
    VistaEnterpriseId, VistaHomeBasicId, VistaHomePremiumId, VistaUltimateId, WindowsXPId, Windows7Id,
    Server2008Id,      Server2008R2Id,
};

constexpr const wchar_t* FrameworkKey = L"SOFTWARE\\Microsoft\\NET Framework Setup\\NDP";
constexpr DWORD MostFrameworks = 10000;
constexpr std::size_t FrameworkTextSize = 100;  // characters, of a subkey's name and of a version

/// Reads the string value "Version" of a framework's key.
bool ReadFrameworkVersion(HKEY parent, const wchar_t* name, std::wstring& version)
{
    const OwnedKey key = OpenKey(parent, name, KEY_READ);
    return key && Registry::ReadString(key.get(), L"Version", FrameworkTextSize * sizeof(wchar_t), version);
}

}  // namespace

void OS::Initialize()
{
    const LogScope trace(L"kel::OS::Initialize", LogScope::Tracing());
}

bool OS::Detect()
{
    return Detect(OSFunctions::OfSystem());
}

bool OS::Detect(const OSFunctions& functions)
{
    return Guarded(L"kel::OS::Detect", L"Error in OS detection.", [&functions] {
        for (const unsigned flag : Flags)
            AddValue(flag, Exists(false));

        const OSInfo info = ReadOSInfo(functions);
        const OSName name = BuildDisplayName(info);
        for (const unsigned flag : name.flags)
            AddValue(flag, Exists(true));
        if (name.isBuilt)
            AddValue(DisplayNameId, Name(name.text));

        StoreVersionRecord(info);
        if (ReadEmulation(functions) == Emulation::Yes)
            AddValue(Is64BitId, Exists(true));
        GetSupportInformation();
    });
}

void OS::StoreVersionRecord(const OSInfo& info)
{
    if (info.hasVersion) {
        const std::wstring major = std::to_wstring(info.major);
        const std::wstring minor = std::to_wstring(info.minor);
        const std::wstring build = std::to_wstring(info.build);
        const Version version(major + L"." + minor + L"." + build);
        AddValue(VersionCopyId, version);
        AddValue(VersionId, version);
        AddValue(MajorVersionId, Version(major));
        AddValue(MinorVersionId, Version(minor));
        AddValue(BuildId, Version(build));
        AddValue(ServicePackMajorId, Version(std::to_wstring(info.servicePackMajor)));
        AddValue(ServicePackMinorId, Version(std::to_wstring(info.servicePackMinor)));
        AddValue(SuiteMaskId, Name(std::to_wstring(info.suiteMask)));
        AddValue(ProductTypeId, Name(std::to_wstring(info.productType)));
        AddValue(LocaleId, Name(Hexadecimal(GetUserDefaultLCID(), 4)));
    }
    AddValue(MachineId, Name(GetMachineIdentifier()));
}

void OS::GetSupportInformation()
{
    const LogScope trace(L"kel::OS::GetSupportInformation", LogScope::Tracing());
    const OwnedKey frameworks = OpenKey(HKEY_LOCAL_MACHINE, FrameworkKey, KEY_READ);
    if (!frameworks)
        return;
    Version current;
    bool found = false;
    // The last one in the order of the registry wins, not the highest; the service knows it so. A name that
    // is too long is passed over; the bound keeps a key that cannot be enumerated from being asked for ever.
    for (DWORD index = 0; index < MostFrameworks; ++index) {
        std::array<wchar_t, FrameworkTextSize> name = {};
        auto size = static_cast<DWORD>(name.size());
        const LSTATUS status =
            RegEnumKeyExW(frameworks.get(), index, name.data(), &size, nullptr, nullptr, nullptr, nullptr);
        if (status == ERROR_NO_MORE_ITEMS)
            break;
        std::wstring version;
        if (status != ERROR_SUCCESS || !ReadFrameworkVersion(frameworks.get(), name.data(), version))
            continue;
        current = Version(version);
        found = true;
        WriteLog(LogTrace, L"Using version: ", version);
    }
    if (found)
        AddValue(DotNetId, current);
}

}  // namespace kel
