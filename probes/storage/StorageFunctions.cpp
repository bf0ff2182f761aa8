#include "probes/storage/StorageFunctions.h"

#include <winioctl.h>

#include <algorithm>
#include <array>
#include <cwctype>
#include <set>
#include <utility>

#include "diag/Log.h"
#include "diag/SourceFailures.h"
#include "values/Text.h"

namespace kel {

namespace {

constexpr std::size_t UsualAnswer = 1024;
/// Far more than any answer that is asked for.
constexpr std::size_t MaxAnswerSize = 65536;
constexpr std::size_t UsualNames = 32768;
constexpr std::size_t MaxNamesSize = 2097152;
constexpr std::size_t MaxDevices = 256;
constexpr std::size_t NumberDigits = 6;

DWORD ListDevices(const wchar_t* name, std::span<wchar_t> buffer)
{
    return QueryDosDeviceW(name, buffer.data(), static_cast<DWORD>(buffer.size()));
}

HANDLE OpenDevice(const wchar_t* path, DWORD access)
{
    return CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                       OPEN_EXISTING, 0, nullptr);
}

BOOL Control(HANDLE device, DWORD code, Bytes input, std::span<std::byte> output, DWORD& size)
{
    // The system's declaration lacks a const here.
    auto* const data = const_cast<std::byte*>(input.data());
    return DeviceIoControl(device, code, data, static_cast<DWORD>(input.size()), output.data(),
                           static_cast<DWORD>(output.size()), &size, nullptr);
}

/// All names of devices, each zero-terminated; empty when the system cannot list them.
std::vector<wchar_t> ListNames(const StorageFunctions& functions)
{
    std::vector<wchar_t> names;
    for (std::size_t room = UsualNames; room <= MaxNamesSize; room *= 4) {
        names.assign(room, L'\0');
        const DWORD length = functions.queryDosDevice(nullptr, names);
        const DWORD error = length > 0 ? ERROR_SUCCESS : GetLastError();
        if (error == ERROR_INSUFFICIENT_BUFFER)
            continue;
        if (error != ERROR_SUCCESS) {
            WriteLog(LogWarning, L"The system cannot list its devices, error ", error);
            FailureScope::Note(L"QueryDosDeviceW", error);
        }
        names.resize(std::min<std::size_t>(length, room));
        return names;
    }
    return {};
}

}  // namespace

StorageFunctions StorageFunctions::OfSystem()
{
    StorageFunctions functions;
    functions.queryDosDevice = &ListDevices;
    functions.openDevice = &OpenDevice;
    functions.ioControl = &Control;
    functions.closeDevice = &CloseHandle;
    functions.getDevicePowerState = [](HANDLE device, BOOL& isOn) {
        return GetDevicePowerState(device, &isOn);
    };
    functions.getSystemWindowsDirectory = [](std::span<wchar_t> buffer) {
        return GetSystemWindowsDirectoryW(buffer.data(), static_cast<UINT>(buffer.size()));
    };
    return functions;
}

std::wstring GetWindowsLetter(const boost::function<UINT(std::span<wchar_t>)>& getSystemWindowsDirectory)
{
    std::array<wchar_t, MAX_PATH> path = {};
    const UINT length = getSystemWindowsDirectory(path);
    if (length < 2 || length >= path.size() || path[1] != L':')
        return {};
    return {static_cast<wchar_t>(std::towupper(path[0])), L':'};
}

std::vector<std::uint32_t> ListDeviceNumbers(const StorageFunctions& functions, std::wstring_view word)
{
    std::set<std::uint32_t> numbers;
    const std::vector<wchar_t> names = ListNames(functions);
    for (auto start = names.begin(); start != names.end();) {
        const auto end = std::find(start, names.end(), L'\0');
        const std::wstring name(start, end);
        start = end != names.end() ? end + 1 : end;
        const std::wstring digits = name.starts_with(word) ? name.substr(word.size()) : std::wstring();
        if (!digits.empty() && digits.size() <= NumberDigits &&
            digits.find_first_not_of(L"0123456789") == std::wstring::npos && numbers.size() < MaxDevices)
            numbers.insert(ToUnsigned(digits));
    }
    return {numbers.begin(), numbers.end()};
}

std::wstring MakeInterfacePath(std::wstring instanceId, const wchar_t* interfaceClass)
{
    if (instanceId.empty())
        return {};
    std::ranges::replace(instanceId, L'\\', L'#');
    return L"\\\\?\\" + instanceId + L"#" + interfaceClass;
}

StorageDevice::StorageDevice(const StorageFunctions& newFunctions, const std::wstring& path, DWORD access)
    : functions(newFunctions), device(nullptr, DeviceCloser{&newFunctions})
{
    const HANDLE opened = functions.openDevice(path.c_str(), access);
    if (opened != INVALID_HANDLE_VALUE)
        device.reset(opened);
    else
        openError = GetLastError();
}

StorageAnswer StorageDevice::Ask(DWORD code, Bytes input) const
{
    StorageAnswer answer;
    if (!IsOpen()) {
        answer.error = openError;
        return answer;
    }
    for (std::size_t room = UsualAnswer; room <= MaxAnswerSize; room *= 8) {
        answer.bytes.assign(room, std::byte{});
        DWORD size = 0;
        if (functions.ioControl(device.get(), code, input, answer.bytes, size)) {
            answer.error = ERROR_SUCCESS;
            answer.bytes.resize(std::min<std::size_t>(size, room));
            return answer;
        }
        answer.error = GetLastError();
        answer.bytes.clear();
        if (answer.error != ERROR_MORE_DATA && answer.error != ERROR_INSUFFICIENT_BUFFER)
            break;
    }
    return answer;
}

StorageAnswer StorageDevice::AskProperty(int property) const
{
    STORAGE_PROPERTY_QUERY query = {};
    query.PropertyId = static_cast<STORAGE_PROPERTY_ID>(property);
    query.QueryType = PropertyStandardQuery;
    return Ask(IOCTL_STORAGE_QUERY_PROPERTY, std::as_bytes(std::span(&query, 1)));
}

bool StorageDevice::IsAsleep() const
{
    BOOL isOn = TRUE;
    return IsOpen() && functions.getDevicePowerState(device.get(), isOn) && !isOn;
}

}  // namespace kel
