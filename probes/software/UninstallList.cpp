#include "probes/software/UninstallList.h"

#include <algorithm>

#include "platform/RegistryNames.h"
#include "values/TextMatch.h"

namespace kel {

namespace {

constexpr const wchar_t* ListKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr DWORD MaxEntries = 20000;
constexpr std::wstring_view UpdateTypes[] = {L"Update", L"Hotfix", L"Service Pack"};

bool IsUpdate(HKEY entry)
{
    const std::wstring type = ReadText(entry, L"ReleaseType");
    return ReadText(entry, L"DisplayName").find(L"(KB") != std::wstring::npos ||
           std::ranges::any_of(UpdateTypes, [&type](std::wstring_view update) {
               return type.find(update) != std::wstring::npos;
           });
}

bool IsPartOrRemains(HKEY entry)
{
    return CountValues(entry) <= 1 || ReadNumber(entry, L"SystemComponent") != 0 ||
           !ReadText(entry, L"ParentKeyName").empty() || IsUpdate(entry);
}

std::wstring KeyOf(const std::wstring& name)
{
    return std::wstring(ListKey) + L"\\" + name;
}

}  // namespace

std::vector<UninstallEntry> UninstallList::Find(const Locator& locator)
{
    std::vector<UninstallEntry> entries;
    const auto add = [&](const RegistryView& view, const std::wstring& name) {
        if (std::optional<UninstallEntry> entry = ReadEntry(view, name, locator.value))
            entries.push_back(*std::move(entry));
    };
    if (locator.by == FindBy::UninstallKey) {
        for (const RegistryView& view : MachineFirst)
            add(view, locator.where);
        return entries;
    }
    ReadNames();
    for (const Named& named : names) {
        if (MatchesPattern(named.displayName, locator.where))
            add(named.view, named.key);
    }
    return entries;
}

void UninstallList::ReadNames()
{
    if (isRead)
        return;
    isRead = true;
    for (const RegistryView& view : MachineFirst) {
        const OwnedKey list = OpenView(functions, view, ListKey);
        if (!list)
            continue;
        for (const std::wstring& name : ListSubkeys(list.get(), MaxEntries)) {
            const OwnedKey entry = OpenView(functions, view, KeyOf(name));
            const std::wstring displayName = entry ? ReadText(entry.get(), L"DisplayName") : std::wstring();
            if (IsLookedFor(displayName))
                names.push_back({view, name, displayName});
        }
    }
}

bool UninstallList::IsLookedFor(const std::wstring& displayName) const
{
    return std::ranges::any_of(products, [&displayName](const Product& product) {
        return std::ranges::any_of(product.locators, [&displayName](const Locator& locator) {
            return locator.by == FindBy::DisplayName && MatchesPattern(displayName, locator.where);
        });
    });
}

std::optional<UninstallEntry> UninstallList::ReadEntry(const RegistryView& view, const std::wstring& name,
                                                       const wchar_t* publisher) const
{
    const OwnedKey entry = OpenView(functions, view, KeyOf(name));
    if (!entry || IsPartOrRemains(entry.get()) ||
        (*publisher != L'\0' && !MatchesPattern(ReadText(entry.get(), L"Publisher"), publisher)))
        return {};
    const auto read = [&entry](const wchar_t* value) { return ReadText(entry.get(), value); };
    return UninstallEntry{read(L"InstallLocation"), read(L"DisplayIcon"), read(L"UninstallString"),
                          read(L"DisplayVersion")};
}

}  // namespace kel
