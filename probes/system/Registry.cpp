#include "probes/system/Registry.h"

#include "diag/Log.h"
#include "diag/ProcessInstance.h"
#include "platform/RegistryValue.h"
#include "probes/Attempt.h"
#include "values/Hexadecimal.h"
#include "values/Junk.h"

namespace kel {

namespace {

constexpr const wchar_t* ProcessorKey = L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";
constexpr const wchar_t* ChipsetKey = L"SOFTWARE\\Intel\\Infinst";
constexpr const wchar_t* BiosKey = L"HARDWARE\\DESCRIPTION\\System\\bios";
constexpr const wchar_t* SystemKey = L"HARDWARE\\DESCRIPTION\\System\\";
constexpr const wchar_t* BoardKey = L"HARDWARE\\DESCRIPTION\\System\\BIOS";
constexpr std::size_t RevisionByte = 4;

std::wstring UpdateSignature()
{
    const OwnedKey key = OpenKey(HKEY_LOCAL_MACHINE, ProcessorKey, KEY_READ);
    const std::optional<RegistryValue> value = key ? ReadValue(key.get(), L"Update Signature") : std::nullopt;
    if (value && value->type == REG_BINARY && value->bytes.size() > RevisionByte)
        return Hexadecimal(value->bytes[RevisionByte], 2);
    WriteLog(LogTrace, L"Registry value is missing or not usable: ", ProcessorKey, L" Update Signature");
    return {};
}

}  // namespace

Registry& Registry::Instance()
{
    return ProcessInstance<Registry>();
}

bool Registry::GetCpuInfo(CpuInfo& info)
{
    Attempt(L"Error in Registry CPU detection.", [&info] { ReadCpuInfo(info); });
    return true;
}

void Registry::ReadCpuInfo(CpuInfo& info)
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
}

void Registry::GetBiosInfo(BiosInfo& info)
{
    Attempt(L"Error in Registry BIOS detection.", [&info] {
        std::wstring vendor;
        std::wstring version;
        if (ReadText(HKEY_LOCAL_MACHINE, BiosKey, L"BIOSVendor", vendor) &&
            ReadText(HKEY_LOCAL_MACHINE, BiosKey, L"BIOSVersion", version))
            info.version = vendor + L" " + version;
        ReadText(HKEY_LOCAL_MACHINE, SystemKey, L"SystemBiosDate", info.date);
    });
}

void Registry::GetBoardInfo(BoardInfo& info)
{
    Attempt(L"Error in Registry board detection.", [&info] {
        ReadText(HKEY_LOCAL_MACHINE, BoardKey, L"BaseBoardVersion", info.version);
        const auto read = [](const wchar_t* name) {
            std::wstring text;
            ReadText(HKEY_LOCAL_MACHINE, BoardKey, name, text);
            return Name(TidyText(text));
        };
        info.systemVendor = read(L"SystemManufacturer");
        info.systemModel = read(L"SystemProductName");
    });
}

bool Registry::ReadText(HKEY root, const wchar_t* key, const wchar_t* name, std::wstring& text, REGSAM access)
{
    const OwnedKey opened = OpenKey(root, key, KEY_READ | access);
    const std::optional<RegistryValue> value = opened ? ReadValue(opened.get(), name) : std::nullopt;
    if (value)
        text = value->Text();
    else
        WriteLog(LogTrace, L"Registry value is missing: ", key, L' ', name);
    return value.has_value();
}

}  // namespace kel
