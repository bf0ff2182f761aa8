#include "support/ScratchKey.h"

#include <stdexcept>
#include <vector>

namespace kel::test {

namespace {

OwnedKey Create(HKEY parent, const std::wstring& name)
{
    HKEY key = nullptr;
    if (RegCreateKeyExW(parent, name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) !=
        ERROR_SUCCESS)
        throw std::runtime_error("A test key cannot be created.");
    return OwnedKey(key);
}

void DumpInto(std::wstring& text, HKEY key, const std::wstring& path)
{
    text += L"[" + path + L"]\n";
    std::vector<wchar_t> name(1000);
    std::vector<BYTE> data(5000);
    for (DWORD index = 0;; ++index) {
        auto nameSize = static_cast<DWORD>(name.size());
        auto size = static_cast<DWORD>(data.size() - sizeof(wchar_t));
        DWORD type = 0;
        if (RegEnumValueW(key, index, name.data(), &nameSize, nullptr, &type, data.data(), &size) !=
            ERROR_SUCCESS)
            break;
        text += std::wstring(name.data()) + L"=";
        if (type == REG_DWORD)
            text += std::to_wstring(*reinterpret_cast<const DWORD*>(data.data())) + L"\n";
        else
            text += std::wstring(reinterpret_cast<const wchar_t*>(data.data()), size / sizeof(wchar_t) - 1) +
                    L"\n";
    }
    for (DWORD index = 0;; ++index) {
        auto nameSize = static_cast<DWORD>(name.size());
        if (RegEnumKeyExW(key, index, name.data(), &nameSize, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS)
            break;
        const OwnedKey child = OpenKey(key, name.data(), KEY_READ);
        DumpInto(text, child.get(), path.empty() ? name.data() : path + L"\\" + name.data());
    }
}

}  // namespace

ScratchKey::ScratchKey()
    : name(L"Software\\KelTests\\" + std::to_wstring(GetCurrentProcessId()) + L"-" +
           std::to_wstring(GetTickCount64())),
      key(Create(HKEY_CURRENT_USER, name))
{
}

ScratchKey::~ScratchKey()
{
    if (overridden != nullptr)
        RegOverridePredefKey(overridden, nullptr);
    key.reset();
    RegDeleteTreeW(HKEY_CURRENT_USER, name.c_str());
}

void ScratchKey::StandFor(HKEY predefined)
{
    if (RegOverridePredefKey(predefined, key.get()) != ERROR_SUCCESS)
        throw std::runtime_error("The test key cannot stand for a predefined key.");
    overridden = predefined;
}

void ScratchKey::Write(const std::wstring& subkey, const wchar_t* valueName, DWORD type, const void* data,
                       std::size_t size) const
{
    RegSetValueExW(Create(key.get(), subkey).get(), valueName, 0, type, static_cast<const BYTE*>(data),
                   static_cast<DWORD>(size));
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
    const OwnedKey opened = OpenKey(key.get(), subkey.c_str(), KEY_READ);
    if (opened)
        DumpInto(text, opened.get(), L"");
    return text;
}

}  // namespace kel::test
