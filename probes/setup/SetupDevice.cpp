#include "probes/setup/SetupDevice.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "diag/Log.h"
#include "diag/SourceFailures.h"
#include "values/Size.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr std::size_t MaxValueSize = 1000;  // bytes
constexpr const wchar_t* ComputerContainer = L"{00000000-0000-0000-FFFF-FFFFFFFFFFFF}";
/// DEVPKEY_Device_ProblemCode, which not every platform's libraries define.
constexpr DEVPROPKEY ProblemCode = {
    {0x4340a6c5, 0x93fa, 0x4706, {0x97, 0x2c, 0x7b, 0x64, 0x80, 0x08, 0xa5, 0xa7}}, 3};
// Not in all compilers' headers.
constexpr DWORD BaseContainerProperty = 0x24;  // SPDRP_BASE_CONTAINERID
constexpr DWORD DisabledFlag = 1;              // CONFIGFLAG_DISABLED
constexpr DWORD MaxInstanceIdLength = 200;     // characters, with the zero at the end

bool IsGiven(const wchar_t* text)
{
    return text != nullptr && *text != L'\0';
}

bool IsNumber(const RegistryValue& value, DWORD type, std::size_t size)
{
    return value.type == type && value.bytes.size() == size;
}

/// The number in at most 8 bytes, the lowest first.
std::uint64_t NumberOf(const RegistryValue& value)
{
    std::uint64_t number = 0;
    std::memcpy(&number, value.bytes.data(), value.bytes.size());
    return number;
}

/// Reads a value and converts it with a function.
/// @param convert takes a RegistryValue; false when it cannot be converted
template <typename Convert>
bool ConvertValue(HKEY key, const wchar_t* subkey, const wchar_t* name, Convert convert)
{
    if (key == nullptr)
        return false;
    try {
        OwnedKey below;
        if (IsGiven(subkey)) {
            below = OpenKey(key, subkey, KEY_READ);
            if (!below)
                return false;
        }
        const std::optional<RegistryValue> value = ReadValue(below ? below.get() : key, name);
        if (value && value->bytes.size() <= MaxValueSize && convert(*value))
            return true;
        WriteLog(LogWarning, L"Can't handle Registry value for: ", name);
    } catch (...) {
        ReportFailure(LogWarning, L"Error with CRegKey");
    }
    return false;
}

}  // namespace

bool SetupDevice::ReadProperty(DWORD property, std::wstring& characters) const
{
    DWORD size = 0;
    if (!entryPoints.getDeviceRegistryProperty(set, &device, property, nullptr, nullptr, 0, &size)) {
        const DWORD error = GetLastError();
        if (error != ERROR_INSUFFICIENT_BUFFER) {
            if (error != ERROR_INVALID_DATA) {  // else the property is absent
                WriteLog(LogWarning, L"SetupDiGetDeviceRegistryProperty failed with error: ", error);
                FailureScope::Note(L"Setup API SetupDiGetDeviceRegistryProperty", error);
            }
            return false;
        }
    }
    // Twice the size, as some systems report it in characters; the call never fills the zeros at the end.
    characters.assign(size, L'\0');
    return entryPoints.getDeviceRegistryProperty(
               set, &device, property, nullptr, reinterpret_cast<BYTE*>(characters.data()),
               static_cast<DWORD>(size * sizeof(wchar_t)), nullptr) != FALSE;
}

DWORD SetupDevice::ReadNumber(DWORD property) const
{
    DWORD number = 0;
    const bool isRead = entryPoints.getDeviceRegistryProperty(
        set, &device, property, nullptr, reinterpret_cast<BYTE*>(&number), sizeof(number), nullptr);
    return isRead ? number : 0;
}

DWORD SetupDevice::ReadNumber(const DEVPROPKEY& property) const
{
    DWORD number = 0;
    DEVPROPTYPE type = 0;
    const bool isRead = entryPoints.getDeviceProperty(
        set, &device, &property, &type, reinterpret_cast<BYTE*>(&number), sizeof(number), nullptr, 0);
    return isRead && type == DEVPROP_TYPE_UINT32 ? number : 0;
}

bool SetupDevice::GetDeviceProperty(DWORD property, std::wstring& text) const
{
    std::wstring characters;
    if (!ReadProperty(property, characters))
        return false;
    text = characters.substr(0, characters.find(L'\0'));
    return true;
}

Name SetupDevice::Text(DWORD property) const
{
    std::wstring text;
    GetDeviceProperty(property, text);
    return Name(text);
}

std::vector<std::wstring> SetupDevice::Texts(DWORD property) const
{
    std::vector<std::wstring> texts;
    std::wstring characters;
    if (!ReadProperty(property, characters))
        return texts;
    for (const std::wstring_view text : Split(characters, L'\0')) {
        if (text.empty())  // ends the list
            break;
        texts.emplace_back(text);
    }
    return texts;
}

Name SetupDevice::DeviceName() const
{
    const Name friendly = Text(SPDRP_FRIENDLYNAME);
    return friendly.HasValue() ? friendly : Text(SPDRP_DEVICEDESC);
}

std::wstring SetupDevice::InstanceId() const
{
    std::array<wchar_t, MaxInstanceIdLength> id{};
    DWORD length = 0;
    if (!entryPoints.getDeviceInstanceId(set, &device, id.data(), MaxInstanceIdLength, &length)) {
        const DWORD error = GetLastError();
        WriteLog(LogWarning, L"SetupDiGetDeviceInstanceId failed with error: ", error);
        FailureScope::Note(L"Setup API SetupDiGetDeviceInstanceId", error);
        return {};
    }
    return ToUpper(id.data());
}

bool SetupDevice::IsWorking() const
{
    return (ReadNumber(SPDRP_CONFIGFLAGS) & DisabledFlag) == 0 && ReadNumber(ProblemCode) == 0;
}

std::optional<bool> SetupDevice::IsInternal() const
{
    const std::wstring container = ToUpper(Text(BaseContainerProperty).ToString());
    return !container.empty() ? std::optional(container == ComputerContainer) : std::nullopt;
}

bool SetupDevice::OpenDeviceKeys(DeviceKeys& keys) const
{
    const auto open = [this](DWORD kind, const wchar_t* failure, OwnedKey& key) {
        const HKEY opened = entryPoints.openDevRegKey(set, &device, DICS_FLAG_GLOBAL, 0, kind, KEY_READ);
        if (opened == INVALID_HANDLE_VALUE || opened == nullptr) {
            const DWORD error = GetLastError();
            WriteLog(LogWarning, failure, error);
            if (error != ERROR_KEY_DOES_NOT_EXIST)
                FailureScope::Note(L"Setup API SetupDiOpenDevRegKey", error);
            return false;
        }
        key.reset(opened);
        return true;
    };
    return open(DIREG_DEV, L"Error in call to SetupDiOpenDevRegKey for hardware key: ", keys.hardware) &&
           open(DIREG_DRV, L"Error in call to SetupDiOpenDevRegKey for software key: ", keys.software);
}

Name SetupDevice::DriverVersion() const
{
    DeviceKeys keys;
    std::wstring version;
    if (OpenDeviceKeys(keys))
        ReadRegistryValue(keys.software.get(), nullptr, L"DriverVersion", version);
    return Name(version);
}

bool ReadRegistryValue(HKEY key, const wchar_t* subkey, const wchar_t* name, std::wstring& text)
{
    text.clear();
    return ConvertValue(key, subkey, name, [&text](const RegistryValue& value) {
        if (value.IsString() || value.type == REG_MULTI_SZ) {
            text = value.Text();
            return true;
        }
        if (IsNumber(value, REG_DWORD, sizeof(DWORD))) {
            text = std::to_wstring(NumberOf(value));
            return true;
        }
        // A 64-bit number gives an empty text; the fallbacks for an empty text rely on it.
        return IsNumber(value, REG_QWORD, sizeof(DWORD64));
    });
}

bool ReadRegistrySize(HKEY key, const wchar_t* subkey, const wchar_t* name, Size& size)
{
    size = Size();
    return ConvertValue(key, subkey, name, [&size](const RegistryValue& value) {
        if (value.IsString())
            return size.Initialize(value.Text().c_str());
        const bool isBinary =
            value.type == REG_BINARY && !value.bytes.empty() && value.bytes.size() <= sizeof(DWORD64);
        if (!isBinary && !IsNumber(value, REG_DWORD, sizeof(DWORD)) &&
            !IsNumber(value, REG_QWORD, sizeof(DWORD64)))
            return false;
        size = Size(NumberOf(value));
        return true;
    });
}

std::wstring ReadFirstText(std::initializer_list<RegistryPlace> places)
{
    std::wstring text;
    for (const RegistryPlace& place : places) {
        if (ReadRegistryValue(place.key, place.subkey, place.name, text) && !text.empty())
            break;
    }
    return text;
}

}  // namespace kel
