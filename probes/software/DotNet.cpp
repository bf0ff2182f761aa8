#include "probes/software/DotNet.h"

#include <algorithm>
#include <array>

#include "diag/Log.h"
#include "platform/RegistryValue.h"
#include "probes/Attempt.h"

namespace kel {

namespace {

constexpr const wchar_t* FrameworkKey = L"SOFTWARE\\Microsoft\\NET Framework Setup\\NDP";
constexpr DWORD MaxFrameworks = 10000;
constexpr std::size_t TextSize = 100;  // characters, of a subkey's name and of a version

/// The lowest release number of each version, as published; newest first.
constexpr struct {
    DWORD release;
    const wchar_t* version;
} Releases[] = {
    {533320, L"4.8.1"}, {528040, L"4.8"},   {461808, L"4.7.2"}, {461308, L"4.7.1"},
    {460798, L"4.7"},   {394802, L"4.6.2"}, {394254, L"4.6.1"}, {393295, L"4.6"},
    {379893, L"4.5.2"}, {378675, L"4.5.1"}, {378389, L"4.5"},
};

/// Reads the string value "Version" of a framework's key.
bool ReadVersion(HKEY parent, const wchar_t* name, std::wstring& version)
{
    const OwnedKey key = OpenKey(parent, name, KEY_READ);
    return key && ReadStringValue(key.get(), L"Version", TextSize * sizeof(wchar_t), version);
}

void Walk(std::optional<std::wstring>& current)
{
    const OwnedKey frameworks = OpenKey(HKEY_LOCAL_MACHINE, FrameworkKey, KEY_READ);
    if (!frameworks)
        return;
    // A name that is too long is skipped; the bound ends the loop for a key that cannot be enumerated.
    for (DWORD index = 0; index < MaxFrameworks; ++index) {
        std::array<wchar_t, TextSize> name = {};
        auto size = static_cast<DWORD>(name.size());
        const LSTATUS status =
            RegEnumKeyExW(frameworks.get(), index, name.data(), &size, nullptr, nullptr, nullptr, nullptr);
        if (status == ERROR_NO_MORE_ITEMS)
            break;
        std::wstring version;
        if (status != ERROR_SUCCESS || !ReadVersion(frameworks.get(), name.data(), version))
            continue;
        current = version;
        WriteLog(LogTrace, L"Using version: ", version);
    }
}

}  // namespace

std::optional<std::wstring> ReadFrameworkVersion()
{
    std::optional<std::wstring> current;
    Attempt(L"Error in .NET Framework detection.", [&current] { Walk(current); });
    return current;
}

std::wstring FrameworkOfRelease(DWORD release)
{
    const auto* const found =
        std::ranges::find_if(Releases, [release](const auto& row) { return release >= row.release; });
    return found != std::end(Releases) ? found->version : L"";
}

}  // namespace kel
