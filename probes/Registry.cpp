#include "probes/Registry.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "diag/Log.h"
#include "diag/Owners.h"
#include "values/Hexadecimal.h"

namespace kel {

namespace {

constexpr const wchar_t* ProcessorKey = L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";
constexpr const wchar_t* ChipsetKey = L"SOFTWARE\\Intel\\Infinst";
constexpr const wchar_t* BiosKey = L"HARDWARE\\DESCRIPTION\\System\\bios";
constexpr const wchar_t* SystemKey = L"HARDWARE\\DESCRIPTION\\System\\";
constexpr const wchar_t* BoardKey = L"HARDWARE\\DESCRIPTION\\System\\BIOS";
constexpr std::size_t RevisionByte = 4;
constexpr int ReadAttempts = 5;

std::wstring UpdateSignature()
{
    const OwnedKey key = OpenKey(HKEY_LOCAL_MACHINE, ProcessorKey, KEY_READ);
    DWORD type = REG_NONE;
    const std::vector<BYTE> bytes =
        key ? Registry::ReadBytes(key.get(), L"Update Signature", type) : std::vector<BYTE>();
    return type == REG_BINARY && bytes.size() > RevisionByte ? Hexadecimal(bytes[RevisionByte], 2)
                                                             : std::wstring();
}

}  // namespace

Registry& Registry::Instance()
{
    static Registry* const instance = std::make_unique<Registry>().release();
    return *instance;
}

bool Registry::GetCpuInfo(CpuInfo& info)
{
    ReadText(HKEY_LOCAL_MACHINE, ProcessorKey, L"ProcessorNameString", info.name);
    WriteLog(LogTrace, L"Name = L", info.name);
    std::wstring megahertz;
    if (ReadText(HKEY_LOCAL_MACHINE, ProcessorKey, L"~MHz", megahertz))
        info.speed.Initialize((megahertz + L" MHz").c_str());
    ReadText(HKEY_LOCAL_MACHINE, ProcessorKey, L"Platform ID", info.platformId);
    info.updateSignature = UpdateSignature();
    if (!ReadText(HKEY_LOCAL_MACHINE, ChipsetKey, L"version", info.chipsetSoftwareVersion, KEY_WOW64_64KEY))
        ReadText(HKEY_LOCAL_MACHINE, ChipsetKey, L"infver", info.chipsetSoftwareVersion, KEY_WOW64_64KEY);
    return true;
}

void Registry::GetBiosInfo(BiosInfo& info)
{
    std::wstring vendor;
    std::wstring version;
    if (ReadText(HKEY_LOCAL_MACHINE, BiosKey, L"BIOSVendor", vendor) &&
        ReadText(HKEY_LOCAL_MACHINE, BiosKey, L"BIOSVersion", version))
        info.version = vendor + L" " + version;
    ReadText(HKEY_LOCAL_MACHINE, SystemKey, L"SystemBiosDate", info.date);
}

void Registry::GetBoardInfo(BoardInfo& info)
{
    ReadText(HKEY_LOCAL_MACHINE, BoardKey, L"BaseBoardVersion", info.version);
}

bool Registry::ReadText(HKEY key, const wchar_t* name, std::wstring& text)
{
    DWORD type = REG_NONE;
    DWORD size = 0;
    if (RegQueryValueExW(key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
        return false;
    const std::vector<BYTE> bytes = ReadBytes(key, name, type);
    text = TextOf(bytes, type);
    return true;
}

bool Registry::ReadText(HKEY root, const wchar_t* key, const wchar_t* name, std::wstring& text, REGSAM access)
{
    const OwnedKey opened = OpenKey(root, key, KEY_READ | access);
    return opened && ReadText(opened.get(), name, text);
}

bool Registry::ReadString(HKEY key, const wchar_t* name, std::size_t largest, std::wstring& text)
{
    DWORD type = REG_NONE;
    const std::vector<BYTE> bytes = ReadBytes(key, name, type);
    if ((type != REG_SZ && type != REG_EXPAND_SZ) || bytes.size() > largest)
        return false;
    text = TextOf(bytes, type);
    return true;
}

std::wstring Registry::TextOf(const std::vector<BYTE>& bytes, DWORD type)
{
    // Half a character at the end counts as one.
    std::wstring characters((bytes.size() + 1) / sizeof(wchar_t), L'\0');
    if (!bytes.empty())
        std::memcpy(characters.data(), bytes.data(), bytes.size());
    if (type == REG_BINARY)
        std::erase(characters, L'\0');
    return characters.substr(0, characters.find(L'\0'));
}

std::vector<BYTE> Registry::ReadBytes(HKEY key, const wchar_t* name, DWORD& type)
{
    std::vector<BYTE> bytes(256);
    // The value may grow between two calls; it will not do so for ever.
    for (int attempt = 0; attempt < ReadAttempts; ++attempt) {
        auto size = static_cast<DWORD>(bytes.size());
        const LSTATUS status = RegQueryValueExW(key, name, nullptr, &type, bytes.data(), &size);
        if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA)
            break;
        bytes.resize(size);
        if (status == ERROR_SUCCESS)
            return bytes;
    }
    return {};
}

}  // namespace kel
