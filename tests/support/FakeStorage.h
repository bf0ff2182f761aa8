#pragma once

#include <windows.h>

#include <winioctl.h>

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "probes/storage/StorageFunctions.h"

namespace kel::test {

/// A request: the control code, and the number of the property, or -1 for other requests.
using Request = std::pair<DWORD, int>;

/// Whether a drive was accessed without the mode in which the system shows no error box.
struct ErrorModeCheck {
    static inline bool isMissed = false;

    static void Look()
    {
        isMissed |= GetThreadErrorMode() != (SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    }
};

/// In the place of an error of opening: an exception.
constexpr DWORD Throws = 0xFFFFFFFF;

/// The answers of a fake device. A request without an answer is refused.
struct FakeDevice {
    std::map<Request, std::string> answers;
    std::map<Request, DWORD> errors;  ///< of requests that are refused for another reason
    DWORD openError = ERROR_SUCCESS;
    bool isReadable = true;
    bool isAwake = true;
};

/// Storage devices by path, and the letters that lead to them. It records what is opened.
struct FakeStorage {
    std::map<std::wstring, FakeDevice> devices;
    std::map<std::wstring, std::wstring> letters;  ///< "D:" to "\Device\CdRom0"
    std::wstring windows = L"C:\\Windows";
    std::vector<std::wstring> opened;  ///< with " for reading" where it was
    int open = 0;
    DWORD listError = ERROR_SUCCESS;

    /// The device under the path of one of its interfaces.
    /// @param number the first number of the interface's GUID
    FakeDevice& InterfaceOf(std::wstring instanceId, const std::wstring& number)
    {
        std::ranges::replace(instanceId, L'\\', L'#');
        return devices[L"\\\\?\\" + instanceId + L"#{" + number + L"-b6bf-11d0-94f2-00a0c91efb8b}"];
    }

    StorageFunctions Functions()
    {
        StorageFunctions functions;
        functions.queryDosDevice = [this](const wchar_t* name, std::span<wchar_t> buffer) {
            return Fill(name == nullptr ? Names() : letters[name], name == nullptr ? listError : 0, buffer);
        };
        functions.openDevice = [this](const wchar_t* path, DWORD access) -> HANDLE {
            ErrorModeCheck::Look();
            opened.push_back(path + std::wstring(access != 0 ? L" for reading" : L""));
            const auto device = devices.find(path);
            DWORD error = device == devices.end() ? ERROR_FILE_NOT_FOUND : device->second.openError;
            if (error == Throws)
                throw 1;
            if (error == ERROR_SUCCESS && access != 0 && !device->second.isReadable)
                error = ERROR_ACCESS_DENIED;
            SetLastError(error);
            open += error == ERROR_SUCCESS;
            return error == ERROR_SUCCESS ? &device->second : INVALID_HANDLE_VALUE;
        };
        functions.ioControl = &Answer;
        functions.closeDevice = [this](HANDLE) { --open; };
        functions.getDevicePowerState = [](HANDLE device, BOOL& isOn) -> BOOL {
            isOn = static_cast<FakeDevice*>(device)->isAwake;
            return TRUE;
        };
        functions.getSystemWindowsDirectory = [this](std::span<wchar_t> buffer) {
            std::ranges::copy(windows, buffer.begin());
            return static_cast<UINT>(windows.size());
        };
        return functions;
    }

    /// A text and a zero, as the system's functions fill buffers.
    static DWORD Fill(const std::wstring& text, DWORD error, std::span<wchar_t> buffer)
    {
        const DWORD known = text.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
        const DWORD fits = text.size() < buffer.size() ? ERROR_SUCCESS : ERROR_INSUFFICIENT_BUFFER;
        SetLastError(error != 0 ? error : known != 0 ? known : fits);
        if (GetLastError() != ERROR_SUCCESS)
            return 0;
        std::ranges::copy(text, buffer.begin());
        buffer[text.size()] = L'\0';
        return static_cast<DWORD>(text.size() + 1);
    }

private:
    std::wstring Names() const
    {
        std::wstring names = L"PhysicalDrive";  // not a number, nor is the next
        names += std::wstring(L"\0PhysicalDrive1x\0", 17);
        for (const auto& [path, device] : devices) {
            if (path.starts_with(L"\\\\.\\"))
                names += path.substr(4) + L'\0';
        }
        return names;
    }

    static BOOL Answer(HANDLE handle, DWORD code, Bytes input, std::span<std::byte> output, DWORD& size)
    {
        const FakeDevice& device = *static_cast<FakeDevice*>(handle);
        const bool isProperty = code == IOCTL_STORAGE_QUERY_PROPERTY;
        const Request request(code, isProperty ? std::to_integer<int>(input[0]) : -1);
        const auto answer = device.answers.find(request);
        const auto error = device.errors.find(request);
        SetLastError(error != device.errors.end() ? error->second : ERROR_NOT_SUPPORTED);
        if (error != device.errors.end() || answer == device.answers.end())
            return FALSE;
        // Like the system, returns what fits, and that there is more.
        size = static_cast<DWORD>(std::min(answer->second.size(), output.size()));
        std::ranges::copy(std::as_bytes(std::span(answer->second)).first(size), output.begin());
        SetLastError(ERROR_MORE_DATA);
        return answer->second.size() <= output.size();
    }
};

}  // namespace kel::test
