#include "support/ScratchKey.h"

#include <stdexcept>

#include "support/TestFolder.h"

namespace kel::test {

namespace {

OwnedKey Create(HKEY parent, const std::wstring& name)
{
    HKEY key = nullptr;
    if (RegCreateKeyW(parent, name.c_str(), &key) != ERROR_SUCCESS)
        throw std::runtime_error("A test key cannot be created.");
    return OwnedKey(key);
}

void DumpInto(std::wstring& text, HKEY key, const std::wstring& path)
{
    text += L"[" + path + L"]\n";
    wchar_t name[1000] = {}, data[2500] = {};
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = 1000, size = sizeof(data), type = 0;
        if (RegEnumValueW(key, index, name, &nameSize, nullptr, &type, reinterpret_cast<BYTE*>(data),
                          &size) != 0)
            break;
        const std::wstring number =
            std::to_wstring(static_cast<DWORD>(data[0]) | static_cast<DWORD>(data[1]) << 16);
        text += std::wstring(name) + L"=" + (type == REG_DWORD ? number : std::wstring(data, size / 2 - 1)) +
                L"\n";
    }
    for (DWORD index = 0; RegEnumKeyW(key, index, name, 1000) == ERROR_SUCCESS; ++index)
        DumpInto(text, OpenKey(key, name, KEY_READ).get(), path.empty() ? name : path + L"\\" + name);
}

}  // namespace

ScratchKey::ScratchKey(HKEY predefined)
    : name(L"Software\\KelTests\\" + NewName()), key(Create(HKEY_CURRENT_USER, name)), overridden(predefined)
{
    if (predefined != nullptr && RegOverridePredefKey(predefined, key.get()) != ERROR_SUCCESS)
        throw std::runtime_error("The test key cannot stand for a predefined key.");
}

ScratchKey::~ScratchKey()
{
    EndIfInterrupted();
    if (overridden != nullptr)
        RegOverridePredefKey(overridden, nullptr);
    key.reset();
    RegDeleteTreeW(HKEY_CURRENT_USER, name.c_str());
}

void ScratchKey::Write(const std::wstring& subkey, const wchar_t* valueName, DWORD type, const void* data,
                       std::size_t size) const
{
    RegSetKeyValueW(key.get(), subkey.c_str(), valueName, type, data, static_cast<DWORD>(size));
}

void ScratchKey::Write(const std::wstring& subkey, const wchar_t* valueName, const std::wstring& text) const
{
    Write(subkey, valueName, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

void ScratchKey::Make(const std::wstring& subkey) const
{
    Create(key.get(), subkey);
}

std::wstring ScratchKey::Dump(const std::wstring& subkey) const
{
    std::wstring text;
    if (const OwnedKey opened = OpenKey(key.get(), subkey.c_str(), KEY_READ))
        DumpInto(text, opened.get(), L"");
    return text;
}

}  // namespace kel::test
