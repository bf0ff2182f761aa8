#pragma once

#include <windows.h>

#include <setupapi.h>

#include <string>

namespace kel::test {

/// The first numbers of the GUIDs of setup classes.
enum DeviceClass : DWORD {
    OpticalClass = 0x4D36E965,
    DiskClass = 0x4D36E967,
    DisplayClass = 0x4D36E968,
    SoundClass = 0x4D36E96C,
    MonitorClass = 0x4D36E96E,
    NetworkClass = 0x4D36E972,
    ScsiClass = 0x4D36E97B
};

/// A device of a setup class, planted through the Setup API and removed by the destructor.
class PlantedDevice {
public:
    /// @param instanceId distinguishes the device from others; null for a generated one
    explicit PlantedDevice(DeviceClass deviceClass, const wchar_t* instanceId = nullptr);
    PlantedDevice(const GUID& deviceClass, const wchar_t* instanceId);
    PlantedDevice(const PlantedDevice&) = delete;
    PlantedDevice& operator=(const PlantedDevice&) = delete;
    ~PlantedDevice();

    /// Sets a text property (SPDRP_...). A list of texts has its zeros inside.
    PlantedDevice& With(DWORD property, const std::wstring& text);

    /// Switches it off ("off"), or gives it a problem code; nothing when empty.
    PlantedDevice& InState(const std::wstring& state);

    /// Puts it into the computer's own container ("own") or into a container of its own ("other"); into none
    /// when empty.
    PlantedDevice& InContainer(const std::wstring& container);

    /// Creates the device's key, or its driver's, and writes a string into it or into a subkey.
    PlantedDevice& Device(const wchar_t* name, const std::wstring& text)
    {
        return Write(DIREG_DEV, name, text, nullptr);
    }
    PlantedDevice& Driver(const wchar_t* name, const std::wstring& text, const wchar_t* subkey = nullptr)
    {
        return Write(DIREG_DRV, name, text, subkey);
    }
    /// The same with a 64-bit number, as 8 binary bytes.
    PlantedDevice& Driver(const wchar_t* name, ULONGLONG number, const wchar_t* subkey);
    /// The same with a text as bytes.
    PlantedDevice& DriverBytes(const wchar_t* name, const std::wstring& text)
    {
        return Write(DIREG_DRV, name, REG_BINARY, text.c_str(), (text.size() + 1) * sizeof(wchar_t), nullptr);
    }

private:
    PlantedDevice& Write(DWORD kind, const wchar_t* name, const std::wstring& text, const wchar_t* subkey);
    PlantedDevice& Write(DWORD kind, const wchar_t* name, DWORD type, const void* data, std::size_t size,
                         const wchar_t* subkey);

    HDEVINFO set;
    SP_DEVINFO_DATA device = {};
};

}  // namespace kel::test
