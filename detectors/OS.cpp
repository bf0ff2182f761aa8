#include "detectors/Detectors.h"
#include "detectors/Facts.h"

#include "detectors/MachineIdentifier.h"
#include "detectors/OSIds.h"
#include "detectors/OSName.h"
#include "probes/software/DotNet.h"
#include "probes/system/OSInfo.h"
#include "probes/system/WindowsInfo.h"
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

/// The numbers of the version record, in the form in which they are stored.
struct VersionRecord {
    Version version;
    Version major;
    Version minor;
    Version build;
    Version servicePackMajor;
    Version servicePackMinor;
    Name suiteMask;
    Name productType;
    Name locale;
};

constexpr FactTable VersionFacts(Fact{71309, &VersionRecord::version}, Fact{71072, &VersionRecord::version},
                                 Fact{71367, &VersionRecord::major}, Fact{71368, &VersionRecord::minor},
                                 Fact{71366, &VersionRecord::build},
                                 Fact{71364, &VersionRecord::servicePackMajor},
                                 Fact{71365, &VersionRecord::servicePackMinor},
                                 Fact{71363, &VersionRecord::suiteMask},
                                 Fact{71362, &VersionRecord::productType},
                                 Fact{71388, &VersionRecord::locale});

constexpr unsigned RevisionId = 73404;

constexpr FactTable WindowsFacts(Fact{73400, &WindowsInfo::version}, Fact{73401, &WindowsInfo::release},
                                 Fact{73402, &WindowsInfo::featureUpdate}, Fact{73403, &WindowsInfo::edition},
                                 Fact{RevisionId, &WindowsInfo::revision},
                                 Fact{73405, &WindowsInfo::architecture}, Fact{73406, &WindowsInfo::isServer},
                                 Fact{73407, &WindowsInfo::canAdminister},
                                 Fact{73408, &WindowsInfo::isRestartPending});

VersionRecord RecordOf(const OSInfo& info)
{
    const auto version = [](DWORD number) { return Version(std::to_wstring(number)); };
    return {Version(std::to_wstring(info.major) + L"." + std::to_wstring(info.minor) + L"." +
                    std::to_wstring(info.build)),
            version(info.major),
            version(info.minor),
            version(info.build),
            version(info.servicePackMajor),
            version(info.servicePackMinor),
            Name(std::to_wstring(info.suiteMask)),
            Name(std::to_wstring(info.productType)),
            Name(Hexadecimal(info.locale, 4))};
}

}  // namespace

void OS::Initialize()
{
    const LogScope trace(L"kel::OS::Initialize");
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

        if (info.hasVersion)
            VersionFacts.Store(RecordOf(info));
        AddValue(MachineId, Name(GetMachineIdentifier()));
        if (ReadEmulation(functions) == Emulation::Yes)
            AddValue(Is64BitId, Exists(true));
        GetSupportInformation();
        WindowsFacts.Store(ReadWindowsInfo(functions, Session::Current().IsWanted(GroupID(RevisionId))));
    });
}

void OS::GetSupportInformation()
{
    const LogScope trace(L"kel::OS::GetSupportInformation");
    if (const std::optional<std::wstring> framework = ReadFrameworkVersion())
        AddValue(DotNetId, Version(*framework));
}

StoredFacts OS::ListFacts()
{
    StoredFacts facts = CollectFacts(VersionFacts);
    for (const unsigned flag : Flags)
        facts.push_back({flag, TypeName<Exists>});
    facts.insert(
        facts.end(),
        {{DisplayNameId, TypeName<Name>}, {MachineId, TypeName<Name>}, {DotNetId, TypeName<Version>}});
    WindowsFacts.List(facts);
    return facts;
}

}  // namespace kel
