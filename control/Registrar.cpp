#include "control/Registrar.h"

#include "platform/RegistryValue.h"

namespace kel {

namespace {

void CheckStatus(LSTATUS status, const char* message)
{
    CheckRegistration(HRESULT_FROM_WIN32(static_cast<DWORD>(status)), message);
}

/// Removes a key. A missing one is not a failure.
/// @return whether it existed
bool CheckRemoval(LSTATUS status)
{
    if (status == ERROR_FILE_NOT_FOUND)
        return false;
    CheckStatus(status, "A registry key cannot be removed.");
    return true;
}

void RemoveTree(HKEY parent, const std::wstring& name)
{
    CheckRemoval(RegDeleteTreeW(parent, name.c_str()));
}

bool HasSubkeys(HKEY key)
{
    DWORD count = 0;
    RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr, nullptr);
    return count != 0;
}

void Write(HKEY parent, const ScriptKey& key)
{
    if (key.rule == KeyRule::ForceRemove)
        RemoveTree(parent, key.name);
    HKEY created = nullptr;
    CheckStatus(RegCreateKeyExW(parent, key.name.c_str(), 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr,
                                &created, nullptr),
                "A registry key cannot be created.");
    const OwnedKey owner(created);
    for (const ScriptValue& value : key.values)
        CheckStatus(RegSetValueExW(created, value.name.c_str(), 0, REG_SZ,
                                   reinterpret_cast<const BYTE*>(value.text.c_str()),
                                   static_cast<DWORD>((value.text.size() + 1) * sizeof(wchar_t))),
                    "A registry value cannot be written.");
    for (const ScriptKey& child : key.keys)
        Write(created, child);
}

void Remove(HKEY parent, const ScriptKey& key)
{
    if (key.rule == KeyRule::ForceRemove)
        return RemoveTree(parent, key.name);
    HKEY opened = nullptr;
    if (!CheckRemoval(RegOpenKeyExW(parent, key.name.c_str(), 0, KEY_READ | KEY_WRITE, &opened)))
        return;
    const OwnedKey owner(opened);
    for (const ScriptKey& child : key.keys)
        Remove(opened, child);
    if (key.rule == KeyRule::Plain && !HasSubkeys(opened))
        CheckRemoval(RegDeleteKeyW(parent, key.name.c_str()));
}

}  // namespace

void CheckRegistration(HRESULT result, const char* message)
{
    if (FAILED(result))
        throw RegistrationError(result, message);
}

void Registrar::Register(const std::vector<ScriptKey>& keys) const
{
    try {
        for (const ScriptKey& key : keys)
            Write(root, key);
    } catch (...) {
        try {
            Unregister(keys);
        } catch (...) {
            // The first failure is the one to report; keys that cannot be removed now stay.
        }
        throw;
    }
}

void Registrar::Unregister(const std::vector<ScriptKey>& keys) const
{
    for (const ScriptKey& key : keys)
        Remove(root, key);
}

}  // namespace kel
