// The places where the product finder looks, with a function for each kind.
#include <algorithm>

#include "diag/Log.h"
#include "diag/SourceFailures.h"
#include "platform/RegistryNames.h"
#include "probes/software/Command.h"
#include "probes/software/DotNet.h"
#include "probes/software/ProductFinder.h"
#include "probes/software/VersionText.h"
#include "values/Text.h"
#include "values/TextMatch.h"

namespace kel {

namespace {

constexpr const wchar_t* AppPathsKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";
constexpr const wchar_t* ClientsKey = L"SOFTWARE\\Clients\\StartMenuInternet";
constexpr const wchar_t* RegisteredKey = L"SOFTWARE\\RegisteredApplications";
constexpr const wchar_t* AddressesKey = L"\\URLAssociations";
constexpr const wchar_t* ClassKeyPrefix = L"SOFTWARE\\Classes\\";
constexpr DWORD MaxNames = 1000;    // below one key
constexpr DWORD MaxInstalled = 32;  // products of one upgrade code
constexpr DWORD CodeSize = 39;
constexpr DWORD MaxPropertyLength = 32768;  // characters

/// The keys that match a name in which "*" stands for all subkeys.
std::vector<std::wstring> ListKeys(const SoftwareFunctions& functions, const RegistryView& view,
                                   const std::wstring& name)
{
    const std::size_t star = name.find(L"\\*");
    if (star == std::wstring::npos)
        return {name};
    const std::wstring parent = name.substr(0, star);
    const OwnedKey key = OpenView(functions, view, parent);
    std::vector<std::wstring> keys = key ? ListSubkeys(key.get(), MaxNames) : std::vector<std::wstring>();
    for (std::wstring& subkey : keys)
        subkey.insert(0, parent + L"\\").append(name, star + 2);
    return keys;
}

/// The folder that a text names; for a program or a command, the folder that holds it.
std::wstring FolderIn(const std::wstring& text)
{
    const std::vector<std::wstring> programs = ProgramsOf(text);
    if (programs.empty())
        return text;
    const std::wstring& program = programs.front();
    const bool isFolder = !IsSameText(std::wstring_view(program).substr(program.rfind(L'.') + 1), L"exe");
    return isFolder ? program : std::wstring(FolderOf(program));
}

/// The folder in which "*" stands for a version.
std::wstring FolderOfVersion(std::wstring folder, const std::wstring& version)
{
    ReplaceAll(folder, L"*", version);
    return folder;
}

/// The first text that a key has under the names of a list.
std::wstring ReadFirstText(HKEY key, const wchar_t* names)
{
    for (const std::wstring_view name : SplitList(names)) {
        std::wstring text = ReadText(key, std::wstring(name).c_str());
        if (!text.empty())
            return text;
    }
    return {};
}

/// The version in a key's own values.
std::wstring ReadKeyVersion(const Locator& locator, HKEY key)
{
    for (const std::wstring_view value : SplitList(locator.version)) {
        std::wstring version = ReadDottedNumber(ReadText(key, std::wstring(value).c_str()));
        if (!version.empty())
            return version;
    }
    return {};
}

/// Whether a key marks its product as not installed.
bool IsMarkedAbsent(HKEY key)
{
    return std::ranges::any_of(std::initializer_list<const wchar_t*>{L"Installed", L"Install"},
                               [key](const wchar_t* name) {
                                   const std::optional<RegistryValue> value = ReadValue(key, name);
                                   return value && value->type == REG_DWORD && ReadNumber(key, name) == 0;
                               });
}

}  // namespace

void ProductFinder::FindInstalled(const Search& search)
{
    for (DWORD index = 0; index < MaxInstalled && installerError == ERROR_SUCCESS; ++index) {
        wchar_t code[CodeSize] = {};
        const UINT status = functions.relatedProduct(search.locator.where, index, code);
        if (status == ERROR_NO_MORE_ITEMS)
            return;
        if (status != ERROR_SUCCESS) {
            WriteLog(LogWarning, L"The installer cannot list its products: ", status);
            installerError = status;
            break;
        }
        code[CodeSize - 1] = L'\0';
        const Installation installed = {ReadDottedNumber(ReadProperty(code, L"VersionString")),
                                        VersionFrom::Installer};
        const std::wstring folder = ReadProperty(code, L"InstallLocation");
        if (!folder.empty())
            Add(search, files.FindBelow(folder, search.product.programs), installed);
        else if (!installed.version.empty())  // a product that is only advertised has none
            search.found.push_back(installed);
    }
    if (installerError != ERROR_SUCCESS)
        FailureScope::Note(L"the Windows Installer", installerError);
}

std::wstring ProductFinder::ReadProperty(const wchar_t* code, const wchar_t* property)
{
    DWORD size = MAX_PATH;
    std::wstring text(size, L'\0');
    UINT status = functions.productInfo(code, property, text.data(), &size);
    if (status == ERROR_MORE_DATA && size < MaxPropertyLength) {
        text.assign(++size, L'\0');
        status = functions.productInfo(code, property, text.data(), &size);
    }
    return status == ERROR_SUCCESS ? text.substr(0, text.find(L'\0')) : std::wstring();
}

void ProductFinder::FindEntries(const Search& search)
{
    const wchar_t* const programs = search.product.programs;
    for (const UninstallEntry& entry : uninstallList.Find(search.locator)) {
        std::wstring path = files.FindNamed(entry.icon, programs);
        for (const std::wstring* place : {&entry.folder, &entry.icon, &entry.uninstaller}) {
            if (path.empty())
                path = files.FindBelow(FolderIn(*place), programs);
        }
        Add(search, path, {ReadDottedNumber(entry.version), VersionFrom::Entry});
    }
}

void ProductFinder::FindAppPaths(const Search& search)
{
    const wchar_t* const named = search.locator.where;
    std::vector<std::wstring> names;
    for (const std::wstring_view program : SplitList(*named != L'\0' ? named : search.product.programs)) {
        const std::wstring name(FileNameOf(program));
        if (std::ranges::find(names, name) == names.end())
            names.push_back(name);
    }
    for (const std::wstring& name : names) {
        for (const RegistryView& view : UserFirst) {
            if (const OwnedKey key = OpenView(functions, view, AppPathsKey + name))
                Add(search, files.FindNamed(ReadText(key.get(), nullptr), search.product.programs));
        }
    }
}

void ProductFinder::FindClients(const Search& search)
{
    for (const RegistryView& view : UserFirst) {
        const OwnedKey clients = OpenView(functions, view, ClientsKey);
        if (!clients)
            continue;
        for (const std::wstring& name : ListSubkeys(clients.get(), MaxNames)) {
            if (MatchesPattern(name, search.locator.where))
                AddCommand(search, view, std::wstring(ClientsKey) + L"\\" + name);
        }
    }
}

void ProductFinder::FindRegistered(const Search& search)
{
    for (const RegistryView& view : UserFirst) {
        const OwnedKey applications = OpenView(functions, view, RegisteredKey);
        if (!applications)
            continue;
        for (const std::wstring& name : ListValues(applications.get(), MaxNames)) {
            if (!MatchesPattern(name, search.locator.where))
                continue;
            const std::wstring abilities = ReadText(applications.get(), name.c_str());
            if (abilities.empty())
                continue;
            const OwnedKey addresses = OpenView(functions, view, abilities + AddressesKey);
            const std::wstring id = addresses ? ReadText(addresses.get(), L"https") : std::wstring();
            if (!id.empty() && id.find(L'\\') == std::wstring::npos)
                AddCommand(search, view, ClassKeyPrefix + id);
        }
    }
}

void ProductFinder::FindKeys(const Search& search)
{
    // A key that names no folder belongs to the installation for all users, whatever a user's key holds.
    const bool isOfAll = *search.locator.value == L'\0';
    for (const RegistryView& view : isOfAll ? MachineFirst : UserFirst) {
        for (const std::wstring& name : ListKeys(functions, view, search.locator.where)) {
            const OwnedKey key = OpenView(functions, view, name);
            if (key && !IsMarkedAbsent(key.get()))
                AddKey(search, view, key.get());
        }
    }
}

void ProductFinder::AddKey(const Search& search, const RegistryView& view, HKEY key)
{
    const Locator& locator = search.locator;
    std::wstring version = ReadKeyVersion(locator, key);
    if (locator.by == FindBy::Release && ReadNumber(key, L"Release") != 0)
        version = FrameworkOfRelease(ReadNumber(key, L"Release"));
    std::wstring path;
    if (*locator.value == L'\0') {
        path = files.FindBelow(FolderOfVersion(locator.folder, version), search.product.programs);
    } else if (const std::wstring place = ReadFirstText(key, locator.value); !place.empty()) {
        path = files.FindNamed(place, search.product.programs);
        if (path.empty())
            path = files.FindBelow(JoinPath(FolderIn(place), locator.folder), search.product.programs);
    }
    Add(search, path, {version, VersionFrom::File, L"", view.flag == KEY_WOW64_32KEY});
}

void ProductFinder::FindValueNames(const Search& search)
{
    for (const RegistryView& view : UserFirst) {
        const OwnedKey key = OpenView(functions, view, search.locator.where);
        if (!key)
            continue;
        for (const std::wstring& name : ListValues(key.get(), MaxNames)) {
            // An unreleased version ends in a word.
            if (name != ReadDottedNumber(name))
                continue;
            const std::wstring folder = FolderOfVersion(search.locator.folder, name);
            Add(search, files.FindBelow(folder, search.product.programs), {name, VersionFrom::File});
        }
    }
}

void ProductFinder::FindPackages(const Search& search)
{
    for (const std::wstring& fullName : functions.packages(search.locator.where)) {
        const std::wstring version = ReadPackageVersion(fullName, search.locator.where);
        if (!version.empty())
            Add(search, files.FindBelow(functions.packageFolder(fullName.c_str()), search.product.programs),
                {version, VersionFrom::Installer});
    }
}

}  // namespace kel
