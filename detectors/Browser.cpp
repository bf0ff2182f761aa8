#include "detectors/Detectors.h"
#include "detectors/Facts.h"
#include "detectors/ProductFacts.h"
#include "detectors/ProductTables.h"
#include "probes/Attempt.h"
#include "probes/software/Command.h"
#include "probes/software/ProductFinder.h"
#include "values/Count.h"
#include "values/Name.h"
#include "values/Version.h"

namespace kel {

namespace {

struct BrowserInfo {
    bool isThere = false;
    Count count = Count(0);
    Name ofChoice;  ///< the row's name of the default browser
    Name host;      ///< file name of the program that the control runs in
    std::optional<Version> hostVersion;
};

constexpr FactTable Facts(Fact{73000, &BrowserInfo::isThere}, Fact{73001, &BrowserInfo::count},
                          Fact{73002, &BrowserInfo::ofChoice}, Fact{73003, &BrowserInfo::host},
                          Fact{73004, &BrowserInfo::hostVersion});

/// The keys in which Windows keeps the choice; since 11 24H2, it is in the first one.
constexpr const wchar_t* ChoiceKeys[] = {
    L"SOFTWARE\\Microsoft\\Windows\\Shell\\Associations\\UrlAssociations\\https\\UserChoiceLatest\\ProgId",
    L"SOFTWARE\\Microsoft\\Windows\\Shell\\Associations\\UrlAssociations\\https\\UserChoiceLatest",
    L"SOFTWARE\\Microsoft\\Windows\\Shell\\Associations\\UrlAssociations\\https\\UserChoice",
};

constexpr unsigned InternetExplorerId = 73010;
/// Since Windows 11, the remaining parts of Internet Explorer open Edge.
constexpr DWORD BuildWithoutInternetExplorer = 22000;

/// The id of the program that the user has chosen for web addresses; empty without a choice.
std::wstring ReadChoice(const SoftwareFunctions& functions)
{
    std::wstring choice = functions.programId(L"https");
    for (const wchar_t* name : ChoiceKeys) {
        if (!choice.empty())
            break;
        if (const OwnedKey key = OpenView(functions, CurrentUser, name))
            choice = ReadText(key.get(), L"ProgId");
    }
    return choice;
}

/// Whether an installation of the row is a browser that a user can open.
bool IsBrowser(const SoftwareFunctions& functions, const Product& row)
{
    return row.existsId != InternetExplorerId || functions.windowsBuild() < BuildWithoutInternetExplorer;
}

void ReadHost(const SoftwareFunctions& functions, ProductFinder& finder, BrowserInfo& info)
{
    const std::wstring path = functions.hostProgram();
    info.host = Name(std::wstring(FileNameOf(path)));
    const std::wstring version = finder.ReadFileVersion(path);
    if (!version.empty())
        info.hostVersion = Version(version);
}

}  // namespace

bool Browser::Detect()
{
    return Detect(SoftwareFunctions::OfSystem());
}

bool Browser::Detect(const SoftwareFunctions& functions)
{
    return Guarded(L"kel::Browser::Detect", L"Error in Browser detection.", [&] {
        Facts.Store(BrowserInfo());
        StoreDefaults(table);
        ProductFinder finder(functions, table);
        BrowserInfo info;
        std::wstring choice;
        Attempt(L"Error while reading the choice of a browser.", [&] { choice = ReadChoice(functions); });
        std::int32_t count = 0;
        for (const Product& row : table) {
            const FailureScope scope;
            Attempt(L"Error while looking for a browser.", [&] {
                const std::optional<Installation> found = finder.FindFirst(row);
                if (found)
                    StoreProduct(L"Browser", row, {&*found, 1});
                else
                    StoreProduct(L"Browser", row, {});
                count += found && IsBrowser(functions, row) ? 1 : 0;
                if (found && finder.IsProgramId(choice, row))
                    info.ofChoice = Name(row.name);
            });
            NoteProduct(row, scope.Found());
        }
        info.isThere = count > 0;
        info.count = Count(count);
        Attempt(L"Error while reading the host's version.", [&] { ReadHost(functions, finder, info); });
        Facts.Store(info);
    });
}

void Browser::Initialize()
{
    const LogScope trace(L"kel::Browser::Initialize");
    table = BrowserTable();
}

StoredFacts Browser::ListFacts()
{
    StoredFacts facts = CollectFacts(Facts);
    AddFacts(facts, BrowserTable());
    return facts;
}

}  // namespace kel
