#include <algorithm>

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

constexpr const wchar_t* ChoiceKey =
    L"SOFTWARE\\Microsoft\\Windows\\Shell\\Associations\\UrlAssociations\\https\\UserChoice";

/// The id of the program that the user has chosen for web addresses; empty without a choice.
std::wstring ReadChoice(const SoftwareFunctions& functions)
{
    const OwnedKey key = OpenView(functions, CurrentUser, ChoiceKey);
    return key ? ReadText(key.get(), L"ProgId") : std::wstring();
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
        std::vector<std::optional<Installation>> browsers(table.size());
        for (std::size_t row = 0; row < table.size(); ++row) {
            Attempt(L"Error while looking for a browser.", [&] {
                browsers[row] = finder.FindFirst(table[row]);
                if (browsers[row] && finder.IsProgramId(choice, table[row]))
                    info.ofChoice = Name(table[row].name);
            });
        }
        const auto count =
            std::ranges::count_if(browsers, [](const auto& found) { return found.has_value(); });
        info.isThere = count > 0;
        info.count = Count(count);
        Attempt(L"Error while reading the host's version.", [&] { ReadHost(functions, finder, info); });
        Facts.Store(info);
        for (std::size_t row = 0; row < table.size(); ++row)
            StoreProduct(L"Browser", table[row], browsers[row] ? &*browsers[row] : nullptr);
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
