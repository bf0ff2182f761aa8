#include "detectors/OSName.h"

#include <cstdio>
#include <string_view>

#include "detectors/OSIds.h"

namespace kel {

namespace {

using namespace OSIds;

constexpr std::size_t MaxNameLength = 255;
constexpr DWORD NtPlatform = 2;
constexpr BYTE Workstation = 1;

enum Architecture : WORD { X86 = 0, Itanium = 6, X64 = 9 };

enum Suite : WORD {
    EnterpriseSuite = 0x2,
    DatacenterSuite = 0x80,
    PersonalSuite = 0x200,
    BladeSuite = 0x400,
    StorageServerSuite = 0x2000,
    ComputeServerSuite = 0x4000,
};

/// An edition as GetProductInfo numbers it; the flag is set on Vista only.
struct Edition {
    DWORD type;
    const wchar_t* text;
    unsigned vistaFlag;
};

constexpr Edition Editions[] = {
    {0x01, L"Ultimate Edition", VistaUltimateId},
    {0x02, L"Home Basic Edition", VistaHomeBasicId},
    {0x03, L"Home Premium Edition", VistaHomePremiumId},
    {0x04, L"Enterprise Edition", VistaEnterpriseId},
    {0x06, L"Business Edition", VistaBusinessId},
    {0x07, L"Standard Edition", 0},
    {0x08, L"Datacenter Edition", 0},
    {0x09, L"Small Business Server", 0},
    {0x0A, L"Enterprise Edition", 0},
    {0x0B, L"Starter Edition", 0},
    {0x0C, L"Datacenter Edition (core installation)", 0},
    {0x0D, L"Standard Edition (core installation)", 0},
    {0x0E, L"Enterprise Edition (core installation)", 0},
    {0x0F, L"Enterprise Edition for Itanium-based Systems", 0},
    {0x11, L"Web Server Edition", 0},
    {0x12, L"Cluster Server Edition", 0},
    {0x19, L"Small Business Server Premium Edition", 0},
};

class Builder {
public:
    explicit Builder(const OSInfo& newInfo) : info(newInfo) {}

    OSName Build()
    {
        Append(L"Microsoft ");
        AddArchitecture();
        if (info.major == 6)
            AddVersion6();
        if (info.major == 5 && info.minor == 2)
            AddVersion52();
        if (info.major == 5 && info.minor == 1)
            AddVersion51();
        if (info.major == 5 && info.minor == 0)
            AddVersion50();
        if (!info.servicePack.empty())
            Append(L" " + info.servicePack);
        Append(L" (build " + std::to_wstring(static_cast<int>(info.build)) + L")");
        if (info.major >= 6 && info.architecture == X64)
            Append(L", 64-bit");
        if (info.major >= 6 && info.architecture == X86)
            Append(L", 32-bit");
        name.isBuilt = true;
        return name;
    }

private:
    void Append(std::wstring_view text)
    {
        name.text.append(text.substr(0, MaxNameLength - name.text.size()));
    }

    void Add(std::wstring_view text, unsigned flag)
    {
        Append(text);
        name.flags.push_back(flag);
    }

    bool HasSuite(WORD suite) const { return (info.suiteMask & suite) != 0; }
    bool IsWorkstation() const { return info.productType == Workstation; }

    void AddArchitecture()
    {
        if (info.architecture == Itanium)
            name.flags.insert(name.flags.end(), {Is64BitId, ItaniumId});
        if (info.architecture == X64)
            name.flags.insert(name.flags.end(), {Is64BitId, X64Id});
    }

    void AddVersion6()
    {
        const bool isVista = info.minor == 0 && IsWorkstation();
        if (isVista)
            Add(L"Windows Vista ", VistaId);
        else if (info.minor == 0)
            Add(L"Windows Server 2008 ", Server2008Id);
        if (info.minor == 1 && IsWorkstation())
            Add(L"Windows 7 ", Windows7Id);
        else if (info.minor == 1)
            Add(L"Windows Server 2008 R2 ", Server2008R2Id);
        for (const Edition& edition : Editions) {
            if (edition.type != info.edition)
                continue;
            Append(edition.text);
            if (isVista && edition.vistaFlag != 0)
                name.flags.push_back(edition.vistaFlag);
        }
    }

    void AddVersion52()
    {
        if (info.isServerR2)
            Add(L"Windows Server 2003 R2, ", Server2003Id);
        else if (info.suiteMask == StorageServerSuite)
            Add(L"Windows Storage Server 2003", Server2003Id);
        else if (!IsWorkstation() || info.architecture != X64)
            Add(L"Windows Server 2003, ", Server2003Id);
        else
            Add(L"Windows XP Professional x64 Edition", WindowsXPId);
        if (!IsWorkstation())
            Append(Server2003Edition());
    }

    const wchar_t* Server2003Edition() const
    {
        if (info.architecture == Itanium) {
            if (HasSuite(DatacenterSuite))
                return L"Datacenter Edition for Itanium-based Systems";
            return HasSuite(EnterpriseSuite) ? L"Enterprise Edition for Itanium-based Systems" : L"";
        }
        if (info.architecture == X64) {
            if (HasSuite(DatacenterSuite))
                return L"Datacenter x64 Edition";
            return HasSuite(EnterpriseSuite) ? L"Enterprise x64 Edition" : L"Standard x64 Edition";
        }
        if (HasSuite(ComputeServerSuite))
            return L"Compute Cluster Edition";
        if (HasSuite(DatacenterSuite))
            return L"Datacenter Edition";
        if (HasSuite(EnterpriseSuite))
            return L"Enterprise Edition";
        return HasSuite(BladeSuite) ? L"Web Edition" : L"Standard Edition";
    }

    void AddVersion51()
    {
        Add(L"Windows XP ", WindowsXPId);
        Append(HasSuite(PersonalSuite) ? L"Home Edition" : L"Professional");
    }

    void AddVersion50()
    {
        Add(L"Windows 2000 ", Windows2000Id);
        if (IsWorkstation())
            Append(L"Professional");
        else if (HasSuite(DatacenterSuite))
            Append(L"Datacenter Server");
        else
            Append(HasSuite(EnterpriseSuite) ? L"Advanced Server" : L"Server");
    }

    const OSInfo& info;
    OSName name;
};

}  // namespace

OSName BuildDisplayName(const OSInfo& info)
{
    if (!info.hasVersion)
        return {};
    if (info.platform != NtPlatform || info.major < 5) {
        std::fputs("This sample does not support this version of Windows.\n", stdout);
        return {};
    }
    return Builder(info).Build();
}

}  // namespace kel
