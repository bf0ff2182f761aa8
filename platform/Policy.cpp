#include "platform/Policy.h"

#include <algorithm>
#include <cstring>

#include "platform/RegistryValue.h"

namespace kel {

namespace {

// 32-bit programs see the same key. packaging/policies/ describes these values to the policy editor.
constexpr const wchar_t* Key = L"Software\\Policies\\Keldane";
constexpr const wchar_t* ServiceHostName = L"ServiceHost";
constexpr const wchar_t* LogFileName = L"LogFile";
constexpr const wchar_t* LogLevelName = L"LogLevel";
constexpr const wchar_t* LogSizeName = L"LogSize";

constexpr std::size_t MaxTextSize = 1024;  // bytes
constexpr DWORD Kilobyte = 1024;

/// A text; empty for a longer one and for any other type.
std::optional<std::wstring> ReadText(HKEY key, const wchar_t* name)
{
    const std::optional<RegistryValue> value = ReadValue(key, name);
    if (!value)
        return std::nullopt;
    return value->IsString() && value->bytes.size() <= MaxTextSize ? value->Text() : std::wstring();
}

DWORD ReadNumber(HKEY key, const wchar_t* name, DWORD standard, DWORD min, DWORD max)
{
    const std::optional<RegistryValue> value = ReadValue(key, name);
    DWORD number = standard;
    if (value && value->type == REG_DWORD && value->bytes.size() == sizeof(number))
        std::memcpy(&number, value->bytes.data(), sizeof(number));
    return std::clamp(number, min, max);
}

}  // namespace

Policy ReadPolicy(HKEY machine)
{
    Policy policy;
    const OwnedKey key = OpenKey(machine, Key, KEY_READ | KEY_WOW64_64KEY);
    if (!key)
        return policy;
    policy.serviceHost = ReadText(key.get(), ServiceHostName);
    policy.logFile = ReadText(key.get(), LogFileName).value_or(L"");
    policy.logLevel = static_cast<int>(ReadNumber(key.get(), LogLevelName, 3, 1, 7));
    policy.logSize = std::uint64_t{Kilobyte} * ReadNumber(key.get(), LogSizeName, Kilobyte, 1024, 102400);
    return policy;
}

const Policy& CurrentPolicy()
{
    static const Policy policy = ReadPolicy();
    return policy;
}

}  // namespace kel
