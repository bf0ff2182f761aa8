#include "probes/SetupLib.h"

#include <cstring>
#include <utility>

#include "diag/Log.h"
#include "diag/LogScope.h"
#include "diag/ProcessInstance.h"
#include "platform/RegistryValue.h"

namespace kel {

namespace {

constexpr std::size_t LargestValue = 1000;  // bytes

static_assert(sizeof(SP_DEVINFO_DATA) == 32);

/// The GUIDs of the classes used differ in their first number only.
constexpr GUID ClassGuid(DWORD first)
{
    return {first, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};
}

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

/// Reads a value, and has a function convert it.
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
        if (value && value->bytes.size() <= LargestValue && convert(*value))
            return true;
        WriteLog(LogWarning, L"Can't handle Registry value for: ", name);
    } catch (...) {
        ReportFailure(LogWarning, L"Error with CRegKey");
    }
    return false;
}

}  // namespace

SetupLib& SetupLib::Instance()
{
    return ProcessInstance<SetupLib>();
}

SetupLib::SetupLib() : SetupLib(Loader(&SetupEntryPoints::Load)) {}

SetupLib::SetupLib(Loader newLoader) : loader(std::move(newLoader))
{
    if (!Initialize())
        ReportFailure(LogError, L"Failure to initialize SetupLib class");
}

bool SetupLib::Initialize()
{
    try {
        const LogScope trace(L"kel::SetupLib::Initialize");
        if (initialized)
            return true;
        if (!loader(entryPoints)) {
            WriteLog(LogError, L"Failure to load setupapi.dll: ", GetLastError());
            return false;
        }
        initialized = entryPoints.IsComplete();
        if (!initialized)
            WriteLog(LogError, L"Error getting proc addresses from Setup library.");
    } catch (...) {
        ReportFailure(LogError, L"Error initializing Setup library.");
    }
    return initialized;
}

bool SetupLib::GetDeviceSet(const GUID& deviceClass, OwnedDeviceSet& set)
{
    try {
        const HDEVINFO opened = entryPoints.getClassDevs(&deviceClass, nullptr, nullptr, DIGCF_PRESENT);
        if (opened == INVALID_HANDLE_VALUE) {
            WriteLog(LogWarning, L"SetupDiGetClassDevs failed with error: ", GetLastError());
            return false;
        }
        set = OwnedDeviceSet(opened, {entryPoints.destroyDeviceInfoList});
        return true;
    } catch (...) {
        ReportFailure(LogError, L"Error in call to SetupDiGetClassDevs.");
        return false;
    }
}

bool SetupLib::GetDeviceProperty(HDEVINFO set, SP_DEVINFO_DATA& device, DWORD property, std::wstring& text)
{
    DWORD size = 0;
    if (!entryPoints.getDeviceRegistryProperty(set, &device, property, nullptr, nullptr, 0, &size)) {
        const DWORD error = GetLastError();
        if (error != ERROR_INSUFFICIENT_BUFFER) {
            if (error != ERROR_INVALID_DATA)  // the property is absent
                WriteLog(LogWarning, L"SetupDiGetDeviceRegistryProperty failed with error: ", error);
            return false;
        }
    }
    // Twice the size, as some systems report it in characters; the zeros at the end are kept from the call.
    std::wstring characters(size, L'\0');
    if (!entryPoints.getDeviceRegistryProperty(set, &device, property, nullptr,
                                               reinterpret_cast<BYTE*>(characters.data()),
                                               static_cast<DWORD>(size * sizeof(wchar_t)), nullptr))
        return false;
    text = characters.substr(0, characters.find(L'\0'));
    return true;
}

bool SetupLib::OpenDeviceKeys(HDEVINFO set, SP_DEVINFO_DATA& device, DeviceKeys& keys)
{
    const auto open = [&](DWORD kind, const wchar_t* failure, OwnedKey& key) {
        const HKEY opened = entryPoints.openDevRegKey(set, &device, DICS_FLAG_GLOBAL, 0, kind, KEY_READ);
        if (opened == INVALID_HANDLE_VALUE || opened == nullptr) {
            WriteLog(LogWarning, failure, GetLastError());
            return false;
        }
        key.reset(opened);
        return true;
    };
    return open(DIREG_DEV, L"Error in call to SetupDiOpenDevRegKey for hardware key: ", keys.hardware) &&
           open(DIREG_DRV, L"Error in call to SetupDiOpenDevRegKey for software key: ", keys.software);
}

bool SetupLib::ReadRegistryValue(HKEY key, const wchar_t* subkey, const wchar_t* name, std::wstring& text)
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
        // The format for 64-bit numbers has always lacked its conversion letter and written nothing; the
        // fallbacks that follow an empty text count on it.
        return IsNumber(value, REG_QWORD, sizeof(DWORD64));
    });
}

bool SetupLib::ReadRegistrySize(HKEY key, const wchar_t* subkey, const wchar_t* name, Size& size)
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

bool SetupLib::Enumerate(const wchar_t* operation, DWORD deviceClass, const wchar_t* setFailure,
                         const Fill& fill)
{
    if (!initialized)
        return false;
    try {
        const LogScope trace((std::wstring(L"kel::SetupLib::") + operation).c_str());
        OwnedDeviceSet set;
        if (!GetDeviceSet(ClassGuid(deviceClass), set)) {
            if (setFailure != nullptr)
                WriteLog(LogError, setFailure);
            return false;
        }
        SP_DEVINFO_DATA device = {};
        device.cbSize = sizeof(device);
        for (DWORD index = 0; entryPoints.enumDeviceInfo(set.get(), index, &device); ++index)
            fill(set.get(), device);
        return true;
    } catch (...) {
        ReportFailure(LogError, L"Error in ", operation);
        return false;
    }
}

}  // namespace kel
