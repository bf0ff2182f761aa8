#include "probes/DotNet.h"

#include <array>

#include "diag/Log.h"
#include "platform/RegistryValue.h"
#include "probes/Attempt.h"

namespace kel {

namespace {

constexpr const wchar_t* FrameworkKey = L"SOFTWARE\\Microsoft\\NET Framework Setup\\NDP";
constexpr DWORD MostFrameworks = 10000;
constexpr std::size_t TextSize = 100;  // characters, of a subkey's name and of a version

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
    // A name that is too long is passed over; the bound keeps a key that cannot be enumerated from being
    // asked for ever.
    for (DWORD index = 0; index < MostFrameworks; ++index) {
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

}  // namespace kel
