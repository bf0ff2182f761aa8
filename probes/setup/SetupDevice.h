#pragma once

#include <windows.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "platform/RegistryValue.h"
#include "probes/setup/SetupEntryPoints.h"
#include "values/Name.h"

namespace kel {

/// The registry keys of a device: its own and its driver's.
struct DeviceKeys {
    OwnedKey hardware;
    OwnedKey software;
};

/// A device of an open device set: reads its properties and its keys.
class SetupDevice {
public:
    /// @param newEntryPoints must outlive this object, as must the set
    SetupDevice(const SetupEntryPoints& newEntryPoints, HDEVINFO newSet, const SP_DEVINFO_DATA& newDevice)
        : entryPoints(newEntryPoints), set(newSet), device(newDevice)
    {
    }

    /// Reads a text property (SPDRP_...), or the first text of a list.
    /// @param text untouched when the property cannot be read
    bool GetDeviceProperty(DWORD property, std::wstring& text) const;

    /// The same; empty when it cannot be read.
    Name Text(DWORD property) const;

    /// All texts of a list property; none when it cannot be read.
    std::vector<std::wstring> Texts(DWORD property) const;

    /// The friendly name, or else the description.
    Name DeviceName() const;

    /// The device instance id, unique on the machine, in upper case; empty when it cannot be read.
    std::wstring InstanceId() const;

    /// Whether the device is switched on and the system reports no problem with it, such as code 43. One
    /// whose state cannot be read counts as working.
    bool IsWorking() const;

    /// Whether the device is part of the computer, by its container; false for one that is plugged in from
    /// outside, whatever its bus. Nullopt when the system does not report a container.
    std::optional<bool> IsInternal() const;

    /// Opens both keys for reading; false, with a warning in the log, unless both are open.
    bool OpenDeviceKeys(DeviceKeys& keys) const;

    /// The driver's version, as its key has it.
    Name DriverVersion() const;

private:
    /// The property's characters, including the zeros at its end.
    bool ReadProperty(DWORD property, std::wstring& characters) const;

    /// A number, 0 when it cannot be read.
    DWORD ReadNumber(DWORD property) const;
    DWORD ReadNumber(const DEVPROPKEY& property) const;

    const SetupEntryPoints& entryPoints;
    HDEVINFO set;
    mutable SP_DEVINFO_DATA device;  // the system's declarations lack a const
};

/// Reads a value of at most 1000 bytes as text: a string, the first string of a list, or a 32-bit number in
/// decimal. A 64-bit number gives an empty text.
/// @param key null gives false without a warning, as does a subkey that cannot be opened
/// @param subkey below the key; null or empty for the key itself
/// @return false, with an empty text and a warning in the log, for every other value and for a missing one
bool ReadRegistryValue(HKEY key, const wchar_t* subkey, const wchar_t* name, std::wstring& text);

/// Reads an amount of memory in bytes: a number of 32 or 64 bits, up to 8 binary bytes, lowest first, or a
/// decimal text. Parameters and result as for ReadRegistryValue.
bool ReadRegistrySize(HKEY key, const wchar_t* subkey, const wchar_t* name, class Size& size);

/// A place of a value below a device's keys, as ReadRegistryValue takes it.
struct RegistryPlace {
    HKEY key;
    const wchar_t* subkey;
    const wchar_t* name;
};

/// The text of the first place that has one, as ReadRegistryValue gives it.
std::wstring ReadFirstText(std::initializer_list<RegistryPlace> places);

}  // namespace kel
