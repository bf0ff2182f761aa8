#include "platform/RegistryValue.h"

#include <cstring>

#include "diag/SourceFailures.h"

namespace kel {

namespace {

constexpr std::size_t FirstSize = 256;
constexpr int ReadAttempts = 5;

/// Notes why a key or value cannot be read, unless it is not there.
void NoteUnreadable(const wchar_t* name, LSTATUS status) noexcept
{
    if (status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND)
        return;
    try {
        FailureScope::Note(std::wstring(L"registry ") + (name != nullptr ? name : L""),
                           static_cast<std::uint32_t>(status));
    } catch (...) {
        FailureScope::NoteException();
    }
}

}  // namespace

OwnedKey OpenKey(HKEY parent, const wchar_t* name, REGSAM access) noexcept
{
    HKEY key = nullptr;
    const LSTATUS status = RegOpenKeyExW(parent, name, 0, access, &key);
    NoteUnreadable(name, status);
    return status == ERROR_SUCCESS ? OwnedKey(key) : OwnedKey();
}

std::wstring RegistryValue::Text() const
{
    std::wstring characters((bytes.size() + 1) / sizeof(wchar_t), L'\0');
    if (!bytes.empty())
        std::memcpy(characters.data(), bytes.data(), bytes.size());
    if (type == REG_BINARY)
        std::erase(characters, L'\0');
    return characters.substr(0, characters.find(L'\0'));
}

std::optional<RegistryValue> ReadValue(HKEY key, const wchar_t* name)
{
    RegistryValue value;
    value.bytes.resize(FirstSize);
    // The value may grow between two calls; a few attempts are enough.
    for (int attempt = 0; attempt < ReadAttempts; ++attempt) {
        auto size = static_cast<DWORD>(value.bytes.size());
        const LSTATUS status = RegQueryValueExW(key, name, nullptr, &value.type, value.bytes.data(), &size);
        if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) {
            NoteUnreadable(name, status);
            break;
        }
        value.bytes.resize(size);
        if (status == ERROR_SUCCESS)
            return value;
    }
    return {};
}

bool ReadStringValue(HKEY key, const wchar_t* name, std::size_t maxSize, std::wstring& text)
{
    const std::optional<RegistryValue> value = ReadValue(key, name);
    if (!value || !value->IsString() || value->bytes.size() > maxSize)
        return false;
    text = value->Text();
    return true;
}

}  // namespace kel
