#include "detectors/MachineIdentifier.h"

#include <objbase.h>
#include <windows.h>

#include <array>

#include "platform/RegistryValue.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr const wchar_t* IdentifierKey = L"software\\Keldane";
constexpr const wchar_t* IdentifierValue = L"Run";
constexpr std::size_t BracedGuidLength = 38;
constexpr std::size_t MaxIdentifierSize = 65536;  // bytes; it goes into every report

/// The identifier in the key; empty without one.
std::wstring ReadStoredIdentifier(const OwnedKey& key)
{
    std::wstring text;
    if (key)
        ReadStringValue(key.get(), IdentifierValue, MaxIdentifierSize, text);
    return text;
}

/// Whether the value is too long to be read. Then the control did not write it, so it is kept.
bool IsTooLong(const OwnedKey& key)
{
    DWORD size = 0;
    return RegQueryValueExW(key.get(), IdentifierValue, nullptr, nullptr, nullptr, &size) == ERROR_SUCCESS &&
           size > MaxIdentifierSize;
}

/// A new GUID in braces; empty when the system cannot create one.
std::wstring MakeIdentifier()
{
    GUID guid = {};
    std::array<wchar_t, BracedGuidLength + 1> text = {};
    if (FAILED(CoCreateGuid(&guid)) || StringFromGUID2(guid, text.data(), static_cast<int>(text.size())) == 0)
        return {};
    return text.data();
}

/// Stores a new identifier where the key exists.
/// @return the identifier that the key has then: an old one that could not be read before is not replaced
std::wstring Keep(const std::wstring& identifier)
{
    const OwnedKey key = OpenKey(HKEY_CURRENT_USER, IdentifierKey, KEY_READ | KEY_WRITE);
    std::wstring stored = ReadStoredIdentifier(key);
    if (!stored.empty())
        return stored;
    if (key && !IsTooLong(key))
        RegSetValueExW(key.get(), IdentifierValue, 0, REG_SZ,
                       reinterpret_cast<const BYTE*>(identifier.c_str()),
                       static_cast<DWORD>((identifier.size() + 1) * sizeof(wchar_t)));
    return identifier;
}

}  // namespace

const std::wstring& GetMachineIdentifier()
{
    static std::wstring identifier;
    identifier = ReadStoredIdentifier(OpenKey(HKEY_CURRENT_USER, IdentifierKey, KEY_READ));
    if (identifier.empty()) {
        identifier = MakeIdentifier();
        identifier = identifier.empty() ? L"0" : Keep(identifier);
    }
    RemoveCharacters(identifier, L"{}");
    return identifier;
}

}  // namespace kel
