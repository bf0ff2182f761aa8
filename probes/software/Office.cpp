#include "probes/software/Office.h"

#include <algorithm>
#include <string_view>

#include "probes/software/RegistryViews.h"
#include "values/Text.h"

namespace kel {

namespace {

/// The newest first; the last for names without a year.
constexpr std::pair<std::wstring_view, const wchar_t*> Generations[] = {
    {L"O365", L"Microsoft 365"}, {L"2024", L"2024"}, {L"2021", L"2021"}, {L"2019", L"2019"}, {L"", L"2016"},
};

/// Sold without the suite.
constexpr std::wstring_view OtherProducts[] = {L"Visio", L"Project", L"AccessRuntime", L"SkypeforBusiness",
                                               L"LyncEntry"};

/// The key of each release by the installer of Windows, the newest first.
constexpr std::pair<const wchar_t*, const wchar_t*> OfficeReleases[] = {
    {L"SOFTWARE\\Microsoft\\Office\\16.0\\Outlook", L"2016"},
    {L"SOFTWARE\\Microsoft\\Office\\15.0\\Outlook", L"2013"},
    {L"SOFTWARE\\Microsoft\\Office\\14.0\\Outlook", L"2010"},
};

constexpr const wchar_t* ConfigurationKey = L"SOFTWARE\\Microsoft\\Office\\ClickToRun\\Configuration";

Name NameBitness(const std::wstring& platform)
{
    if (platform == L"x64")
        return Name(L"64-bit");
    return Name(platform == L"x86" ? L"32-bit" : L"");
}

/// The text of the first view that has one.
std::wstring ReadMachineText(const SoftwareFunctions& functions, const wchar_t* name, const wchar_t* value)
{
    std::wstring text;
    for (const RegistryView& view : {Machine64, Machine32}) {
        const OwnedKey key = text.empty() ? OpenView(functions, view, name) : OwnedKey();
        if (key)
            text = ReadText(key.get(), value);
    }
    return text;
}

}  // namespace

std::wstring FindOfficeGeneration(const std::wstring& productIds)
{
    std::size_t newest = std::size(Generations);
    for (const std::wstring_view id : Split(productIds, L',')) {
        const bool isOther = std::ranges::any_of(
            OtherProducts, [id](std::wstring_view product) { return id.starts_with(product); });
        if (id.empty() || isOther)
            continue;
        const auto* const generation = std::ranges::find_if(
            Generations, [id](const auto& row) { return id.find(row.first) != std::wstring_view::npos; });
        newest = std::min(newest, static_cast<std::size_t>(generation - std::begin(Generations)));
    }
    return newest < std::size(Generations) ? Generations[newest].second : L"";
}

OfficeInfo ReadOffice(const SoftwareFunctions& functions)
{
    OfficeInfo info;
    const auto read = [&functions](const wchar_t* value) {
        return ReadMachineText(functions, ConfigurationKey, value);
    };
    info.generation = Name(FindOfficeGeneration(read(L"ProductReleaseIds")));
    if (info.generation.HasValue())
        info.bitness = NameBitness(read(L"Platform"));
    for (const auto& [key, release] : OfficeReleases) {
        const Name bitness = NameBitness(ReadMachineText(functions, key, L"Bitness"));
        if (!bitness.HasValue())
            continue;
        if (!info.generation.HasValue())
            info.generation = Name(release);
        if (!info.bitness.HasValue())
            info.bitness = bitness;
    }
    return info;
}

}  // namespace kel
