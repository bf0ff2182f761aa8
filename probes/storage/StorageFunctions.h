#pragma once

#include <windows.h>

#include <boost/function.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "probes/ByteSpan.h"

namespace kel {

/// The system's functions for storage devices; a test replaces them.
struct StorageFunctions {
    /// QueryDosDeviceW; a null name asks for all names.
    boost::function<DWORD(const wchar_t* name, std::span<wchar_t> buffer)> queryDosDevice;
    /// CreateFileW for a device that exists, sharing all.
    boost::function<HANDLE(const wchar_t* path, DWORD access)> openDevice;
    boost::function<BOOL(HANDLE device, DWORD code, Bytes input, std::span<std::byte> output, DWORD& size)>
        ioControl;
    boost::function<void(HANDLE device)> closeDevice;
    boost::function<BOOL(HANDLE device, BOOL& isOn)> getDevicePowerState;
    boost::function<UINT(std::span<wchar_t> buffer)> getSystemWindowsDirectory;

    /// The system's own.
    static StorageFunctions OfSystem();
};

/// The letter of the volume that holds Windows, such as "C:"; empty when it is not known.
std::wstring GetWindowsLetter(const boost::function<UINT(std::span<wchar_t>)>& getSystemWindowsDirectory);

/// The numbers of the devices whose names are a word and a number, such as "PhysicalDrive0", as the system
/// lists them: ascending, each once, at most 256.
std::vector<std::uint32_t> ListDeviceNumbers(const StorageFunctions& functions, std::wstring_view word);

/// The path of a device's interface of a class, made without asking the system.
/// @param instanceId may be empty; then the path is empty, too
/// @param interfaceClass a GUID in braces
std::wstring MakeInterfacePath(std::wstring instanceId, const wchar_t* interfaceClass);

/// The result of a request.
struct StorageAnswer {
    std::vector<std::byte> bytes;  ///< empty when it was refused
    DWORD error = ERROR_SUCCESS;
};

/// An open storage device; closed with the object.
class StorageDevice {
public:
    /// @param newFunctions must outlive this object
    /// @param access 0 for requests that need no rights: the device is neither woken nor read
    StorageDevice(const StorageFunctions& newFunctions, const std::wstring& path, DWORD access = 0);

    bool IsOpen() const { return device != nullptr; }
    /// Why it is not open.
    DWORD OpenError() const { return openError; }

    /// Makes a request (IOCTL_...).
    StorageAnswer Ask(DWORD code, Bytes input = {}) const;
    /// Asks for a property (STORAGE_PROPERTY_ID).
    StorageAnswer AskProperty(int property) const;

    /// Whether the device sleeps, so that reading would wake it.
    bool IsAsleep() const;

private:
    struct DeviceCloser {
        const StorageFunctions* functions;
        void operator()(void* handle) const { functions->closeDevice(handle); }
    };

    const StorageFunctions& functions;
    std::unique_ptr<void, DeviceCloser> device;
    DWORD openError = ERROR_SUCCESS;
};

}  // namespace kel
