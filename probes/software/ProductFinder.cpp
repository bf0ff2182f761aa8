#include "probes/software/ProductFinder.h"

#include <algorithm>

#include "diag/Log.h"
#include "probes/software/Command.h"
#include "probes/software/VersionText.h"
#include "values/TextMatch.h"

namespace kel {

namespace {

constexpr const wchar_t* ClassesKey = L"SOFTWARE\\Classes\\";
constexpr const wchar_t* CommandKey = L"\\shell\\open\\command";
constexpr const wchar_t* ApplicationKey = L"\\Application";
constexpr std::wstring_view PackagesIds = L"AppX*";  // of programs from packages, which name no product

/// Whether the path is in a folder of another channel.
bool IsOfChannel(const Product& product, std::wstring_view path)
{
    const auto isChannel = [&product](std::wstring_view folder) {
        return std::ranges::any_of(SplitList(product.channels), [folder](std::wstring_view channel) {
            return MatchesPattern(folder, channel);
        });
    };
    for (path = FolderOf(path); !path.empty(); path = FolderOf(path)) {
        if (isChannel(FileNameOf(path)))
            return true;
    }
    return false;
}

bool IsBetter(const Installation& one, const Installation& other)
{
    if (one.version.empty() != other.version.empty())
        return other.version.empty();
    return one.from != other.from ? one.from < other.from : IsLowerVersion(other.version, one.version);
}

std::wstring_view MajorOf(std::wstring_view version)
{
    return version.substr(0, version.find(L'.'));
}

const wchar_t* NameOf(FindBy by)
{
    switch (by) {
        case FindBy::UpgradeCode:
            return L"the installer";
        case FindBy::UninstallKey:
        case FindBy::DisplayName:
            return L"the list of programs";
        case FindBy::AppPath:
            return L"App Paths";
        case FindBy::StartMenu:
            return L"the Internet clients";
        case FindBy::Registered:
            return L"the registered applications";
        case FindBy::AllFiles:
        case FindBy::Folder:
            return L"its folder";
        case FindBy::Family:
            return L"the packages";
        default:
            return L"its key";
    }
}

}  // namespace

std::optional<Installation> ProductFinder::FindFirst(const Product& product)
{
    std::vector<Installation> found;
    for (const Locator& locator : product.locators) {
        Find({product, locator, found});
        if (!found.empty())
            return found.front();
    }
    return {};
}

std::vector<Installation> ProductFinder::FindAll(const Product& product)
{
    std::vector<Installation> found;
    for (const Locator& locator : product.locators)
        Find({product, locator, found});
    return found;
}

std::optional<Installation> ProductFinder::FindNewest(const Product& product)
{
    const std::vector<Installation> found = FindAll(product);
    // The first of equals.
    const auto best = std::ranges::min_element(found, &IsBetter);
    return best != found.end() ? std::optional(*best) : std::nullopt;
}

std::vector<Installation> ProductFinder::FindMajors(const Product& product)
{
    std::vector<Installation> found = FindAll(product);
    if (!std::ranges::all_of(found, &Installation::is32Bit))
        std::erase_if(found, &Installation::is32Bit);
    std::ranges::stable_sort(found, &IsBetter);
    std::vector<Installation> majors;
    for (const Installation& installation : found) {
        const bool isFurther = std::ranges::none_of(majors, [&](const Installation& known) {
            return installation.version.empty() || MajorOf(known.version) == MajorOf(installation.version);
        });
        if (isFurther)
            majors.push_back(installation);
    }
    std::ranges::stable_sort(majors, [](const Installation& one, const Installation& other) {
        return IsLowerVersion(other.version, one.version);
    });
    return majors;
}

bool ProductFinder::IsUncertain(const Product& product) const
{
    return installerError != ERROR_SUCCESS &&
           std::ranges::any_of(product.locators,
                               [](const Locator& locator) { return locator.by == FindBy::UpgradeCode; });
}

bool ProductFinder::IsMet(const Condition& condition)
{
    for (const RegistryView& view : MachineFirst) {
        const OwnedKey key = OpenView(functions, view, condition.key);
        const std::optional<RegistryValue> value = key ? ReadValue(key.get(), condition.value) : std::nullopt;
        if (!value || value->type != REG_DWORD)
            continue;
        const DWORD number = ReadNumber(key.get(), condition.value);
        return condition.min <= number && number <= condition.max;
    }
    return condition.isMetWithout;
}

bool ProductFinder::IsPackagesId(const std::wstring& id, const Product& product)
{
    for (const RegistryView& view : UserFirst) {
        const OwnedKey key = OpenView(functions, view, ClassesKey + id + ApplicationKey);
        const std::wstring application = key ? ReadText(key.get(), L"AppUserModelID") : std::wstring();
        const std::wstring family = application.substr(0, application.find(L'!'));
        if (!family.empty())
            return std::ranges::any_of(product.locators, [&family](const Locator& locator) {
                return locator.by == FindBy::Family && IsSameText(locator.where, family);
            });
    }
    return false;
}

bool ProductFinder::IsProgramId(const std::wstring& id, const Product& product)
{
    if (id.find(L'\\') != std::wstring::npos)
        return false;
    if (MatchesPattern(id, PackagesIds))
        return IsPackagesId(id, product);
    if (std::ranges::none_of(SplitList(product.programIds),
                             [&id](std::wstring_view pattern) { return MatchesPattern(id, pattern); }))
        return false;
    // Channels may share the product's id prefix; they differ by their programs.
    for (const RegistryView& view : UserFirst) {
        const OwnedKey key = OpenView(functions, view, ClassesKey + id + CommandKey);
        const std::wstring command = key ? ReadText(key.get(), nullptr) : std::wstring();
        if (!command.empty()) {
            const std::wstring path = files.FindNamed(command, product.programs);
            return !path.empty() && !IsOfChannel(product, path);
        }
    }
    return true;
}

void ProductFinder::Find(const Search& search)
{
    const std::size_t known = search.found.size();
    const USHORT machine = search.locator.machine;
    if (machine != 0 && machine != functions.programMachine())
        return;
    switch (search.locator.by) {
        case FindBy::UpgradeCode:
            FindInstalled(search);
            break;
        case FindBy::UninstallKey:
        case FindBy::DisplayName:
            FindEntries(search);
            break;
        case FindBy::AppPath:
            FindAppPaths(search);
            break;
        case FindBy::StartMenu:
            FindClients(search);
            break;
        case FindBy::Registered:
            FindRegistered(search);
            break;
        case FindBy::Key:
        case FindBy::Release:
            FindKeys(search);
            break;
        case FindBy::ValueNames:
            FindValueNames(search);
            break;
        case FindBy::Folder:
            Add(search, files.FindBelow(search.locator.where, search.product.programs));
            break;
        case FindBy::AllFiles:
            FindAllFiles(search);
            break;
        case FindBy::Family:
            FindPackages(search);
            break;
    }
    // Few products are there, so that their condition is cheaper to read last.
    const Condition* const condition = search.locator.condition;
    if (search.found.size() > known && condition != nullptr && !IsMet(*condition))
        search.found.resize(known);
    for (std::size_t added = known; added < search.found.size(); ++added)
        search.found[added].source = NameOf(search.locator.by);
}

void ProductFinder::Add(const Search& search, const std::wstring& path, Installation known)
{
    if (path.empty() || IsOfChannel(search.product, path))
        return;
    const bool isVersionStored = search.product.versionId != 0;
    if (isVersionStored && (known.from != VersionFrom::File || known.version.empty())) {
        const std::wstring version = files.ReadVersion(path);
        if (!version.empty())
            known = {version, VersionFrom::File, L"", known.is32Bit};
    }
    search.found.push_back(known);
}

void ProductFinder::FindAllFiles(const Search& search)
{
    std::wstring path;
    for (const std::wstring_view program : SplitList(search.product.programs)) {
        path = files.FindBelow(search.locator.where, program);
        if (path.empty())
            return;
    }
    Add(search, path);
}

void ProductFinder::AddCommand(const Search& search, const RegistryView& view, const std::wstring& key)
{
    if (const OwnedKey command = OpenView(functions, view, key + CommandKey))
        Add(search, files.FindNamed(ReadText(command.get(), nullptr), search.product.programs));
}

}  // namespace kel
