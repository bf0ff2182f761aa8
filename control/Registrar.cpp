#include "control/Registrar.h"

#include <utility>

#include "platform/RegistryValue.h"

namespace kel {

namespace {

void CheckStatus(LSTATUS status, const char* message)
{
    CheckRegistration(HRESULT_FROM_WIN32(static_cast<DWORD>(status)), message);
}

/// Removing what is not there is no failure.
/// @return whether it was there
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

}  // namespace

void CheckRegistration(HRESULT result, const char* message)
{
    if (FAILED(result))
        throw RegistrationError(result, message);
}

Registrar::Registrar(HKEY rootKey, Parameters scriptParameters)
    : root(rootKey), parameters(std::move(scriptParameters))
{
}

void Registrar::Register(const std::vector<ScriptKey>& keys)
{
    Check(keys);
    try {
        for (const ScriptKey& key : keys)
            Write(root, key);
    } catch (...) {
        try {
            Unregister(keys);
        } catch (...) {
            // The first failure is the one to tell; what cannot be removed now stays.
        }
        throw;
    }
}

void Registrar::Unregister(const std::vector<ScriptKey>& keys)
{
    for (const ScriptKey& key : keys)
        Remove(root, key);
}

void Registrar::Write(HKEY parent, const ScriptKey& key)
{
    if (key.rule == KeyRule::ForceRemove || key.rule == KeyRule::Delete)
        RemoveTree(parent, key.name);
    if (key.rule == KeyRule::Delete)
        return;
    HKEY created = nullptr;
    CheckStatus(RegCreateKeyExW(parent, key.name.c_str(), 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr,
                                &created, nullptr),
                "A registry key cannot be created.");
    const OwnedKey owner(created);
    if (key.defaultValue)
        WriteValue(created, nullptr, *key.defaultValue);
    for (const ScriptValue& value : key.values)
        WriteValue(created, value.name.c_str(), value.data);
    for (const ScriptKey& child : key.keys)
        Write(created, child);
}

void Registrar::WriteValue(HKEY key, const wchar_t* name, const ScriptData& data)
{
    LSTATUS status = ERROR_SUCCESS;
    if (const auto* number = std::get_if<std::uint32_t>(&data)) {
        status =
            RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(number), sizeof(*number));
    } else {
        const std::wstring text = Expanded(std::get<std::wstring>(data));
        status = RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                                static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }
    CheckStatus(status, "A registry value cannot be written.");
}

void Registrar::Remove(HKEY parent, const ScriptKey& key)
{
    if (key.rule == KeyRule::Delete)
        return;
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

/// Finds what can only be found when a text is used before anything is written.
void Registrar::Check(const std::vector<ScriptKey>& keys) const
{
    const auto check = [this](const ScriptData& data) {
        if (const auto* text = std::get_if<std::wstring>(&data))
            Expanded(*text);
    };
    for (const ScriptKey& key : keys) {
        if (key.defaultValue)
            check(*key.defaultValue);
        for (const ScriptValue& value : key.values)
            check(value.data);
        Check(key.keys);
    }
}

/// Parameters go into the parsed texts, so that what they contain needs no quoting. Two percent signs are
/// one.
std::wstring Registrar::Expanded(const std::wstring& text) const
{
    std::wstring expanded;
    std::size_t position = 0;
    for (;;) {
        const std::size_t open = text.find(L'%', position);
        expanded.append(text, position, open == std::wstring::npos ? open : open - position);
        if (open == std::wstring::npos)
            return expanded;
        const std::size_t close = text.find(L'%', open + 1);
        if (close == std::wstring::npos)
            throw RegistrationError(E_INVALIDARG, "A parameter of the registration script is not closed.");
        const std::wstring name = text.substr(open + 1, close - open - 1);
        const auto parameter = parameters.find(name);
        if (name.empty())
            expanded += L'%';
        else if (parameter != parameters.end())
            expanded += parameter->second;
        else
            throw RegistrationError(E_INVALIDARG, "The registration script names an unknown parameter.");
        position = close + 1;
    }
}

}  // namespace kel
